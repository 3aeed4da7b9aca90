#pragma once

#include <QCoreApplication>

/** @file The texts of the programs in the user's language. */
namespace Ostrel
{

/**
 * Translates what people read: Texts::tr("..."). Wire words, JSON and options stay as they are.
 *
 * The languages are in Resources/Translations; a text without an entry in each of them fails a test, and
 * Scripts/update-translations makes the entries.
 */
class Texts
{
  Q_DECLARE_TR_FUNCTIONS(Ostrel)
};

/**
 * Takes the user's language for the texts of the programs and of the library. Once, after the application
 * object; without a catalogue for the language the texts are English.
 */
void InstallTranslations();

} // namespace Ostrel
