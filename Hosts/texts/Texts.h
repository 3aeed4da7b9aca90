#pragma once

#include <QCoreApplication>

/** @file The texts of the programs in the user's language. */
namespace Ostrel
{

/**
 * Translates what people read: Texts::tr("..."). Wire words, JSON and the names of options stay as they are.
 *
 * The texts are in Resources/Translations; a text without an entry there fails a test.
 */
class Texts
{
  Q_DECLARE_TR_FUNCTIONS(Ostrel)
};

} // namespace Ostrel
