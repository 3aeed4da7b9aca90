#pragma once

#include <QByteArray>
#include <QString>

/** @file Bytes from strangers, made fit for a terminal, a line-based log and JSON. */
namespace Ostrel
{

/** @return Whether @p bytes are well-formed UTF-8. */
bool IsUtf8(const QByteArray& bytes);

/**
 * @return @p bytes as one line of UTF-8 that moves no cursor, changes no colour and turns no text round.
 *
 * Well-formed UTF-8 stays as it is, except that the backslash is doubled, line feed, return and tabulator
 * become \\n, \\r and \\t, other controls and the marks that reorder or break lines become \\uXXXX. A byte
 * that belongs to no character becomes \\xXX. The original can be recovered from the result.
 */
QByteArray EscapeBytes(const QByteArray& bytes);

/** EscapeBytes() of the UTF-8 of @p text. */
QByteArray EscapeText(const QString& text);

/** @return EscapeText(), in double quotes unless @p name is a plain word that cannot be misread in a line. */
QByteArray QuoteName(const QString& name);

/** QuoteName() as a text, to be put into another. */
QString ShowName(const QString& name);

/** EscapeText() as a text, to be put into another. */
QString ShowText(const QString& text);

/** @return The system's words for an errno, in the user's language. */
QString ShowReason(int error);

/** @return The text of well-formed UTF-8, with a mark at its beginning and zero bytes kept. */
QString DecodeUtf8(const QByteArray& bytes);

} // namespace Ostrel
