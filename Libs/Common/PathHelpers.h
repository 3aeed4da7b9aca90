#pragma once

#include <Common/Export.h>

#include <QString>
#include <QStringList>

Q_FORWARD_DECLARE_CF_TYPE(CFURL);
Q_FORWARD_DECLARE_OBJC_CLASS(NSArray);

/**
 * @file
 * Parts of paths as text, the user's ids as text, and conversions from and to the types that macOS interfaces
 * hand out.
 *
 * But for the ids and CFURLCreateFromPath() nothing here looks at the system: a path need not exist and is
 * taken as it is written. A component is what stands between two dirSep. Comparisons are case-sensitive. The
 * functions keep no state, may be called on any thread, log nothing and never fail: where there is nothing to
 * be found they return a null string.
 */
namespace Tavrik::Cleaner
{

// Inline, so that they are there before whatever a source that sees this header initialises at load time.
inline const QString dirSep = QStringLiteral("/");
inline const QString appExt = QStringLiteral(".app");     ///< Ends the name of an application bundle.
inline const QString lProjExt = QStringLiteral(".lproj"); ///< Ends the name of a localisation folder.

/**
 * The parent is all before the last "/"; where there is none, all before the last backslash.
 *
 * @return "/" for what lies directly below it, an empty string for "/" itself, and null where there is no
 *         separator. A separator at the end counts: the parent of "/a/b/" is "/a/b".
 */
TAVRIK_COMMON_EXPORT QString ExtractParentPath(const QString& path);

/** @return What follows the separator that ends the parent path; the whole text where there is none. */
TAVRIK_COMMON_EXPORT QString ExtractFileName(const QString& path);

/** @return The name, without ".app", of the outermost application bundle in @p path. */
TAVRIK_COMMON_EXPORT QString ExtractBundleName(const QString& path);

/** @return The path of the outermost application bundle, always with a leading and never a doubled "/". */
TAVRIK_COMMON_EXPORT QString ExtractBundlePath(const QString& path);

/**
 * @return The paths of all application bundles in @p path, outermost first and one behind the other: for a
 *         single bundle the same as ExtractBundlePath(), for nested ones no path at all.
 */
TAVRIK_COMMON_EXPORT QString ExtractBundlePathLast(const QString& path);

/** @return The first component with two dots or more, such as "com.example.tool"; ".." is one too. */
TAVRIK_COMMON_EXPORT QString ExtractBundleIdentifier(const QString& path);

/** @return The last component with two dots or more. */
TAVRIK_COMMON_EXPORT QString ExtractBundleIdentifierLast(const QString& path);

/** @return The name, without ".lproj", of the outermost localisation folder in @p path. */
TAVRIK_COMMON_EXPORT QString ExtractLProjName(QString path);

/** @return The path of the outermost localisation folder, as ExtractBundlePath() gives that of a bundle. */
TAVRIK_COMMON_EXPORT QString ExtractLProjPath(QString path);

/** @return The language alone: "en" of "en_US", "zh" of "zh-Hans". */
TAVRIK_COMMON_EXPORT QString ExtractBasicLangCode(QString code);

/**
 * @return What stands between the first "(" and the first ")" of @p text. A missing "(" stands before the
 *         text, and a ")" that is missing or comes too early stands behind it.
 */
TAVRIK_COMMON_EXPORT QString CutFromFirstParentheses(QString text);

/** @return The real user id in decimal. */
TAVRIK_COMMON_EXPORT QString GetUserIdString();

/** @return The effective user id in decimal. */
TAVRIK_COMMON_EXPORT QString GetEffectiveUserIdString();

/**
 * @name Conversions of system types
 * Declared everywhere, defined on macOS alone: no other system hands such objects out, and a program that
 * calls them there does not link.
 * @{
 */

/**
 * @param array Holds nothing but NSString; null counts as empty. To be called from Objective-C++.
 * @return The strings in the array's order.
 */
TAVRIK_COMMON_EXPORT QStringList QStringListFromNSArray(const NSArray* array);

/**
 * Asks the file system whether @p path is a directory; one that does not exist becomes a file's URL.
 *
 * @return Owned by the caller, who releases it with CFRelease(); null when the system makes no URL of it.
 */
TAVRIK_COMMON_EXPORT CFURLRef CFURLCreateFromPath(const QString& path);

/**
 * @param url Not owned, not null.
 * @return The POSIX path; a null string for a URL without one.
 */
TAVRIK_COMMON_EXPORT QString CFURLConvertToPath(CFURLRef url);

/** @} */

} // namespace Tavrik::Cleaner
