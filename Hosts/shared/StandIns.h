#pragma once

#include <QString>
#include <QVector>

/**
 * @file
 * The tools of macOS, and what takes their place on machines without them.
 *
 * A program carries below the resources ":/tools" the folder of its stand-ins, and the firewall's script once
 * for each firewall tool that it may run as root.
 */
namespace Ostrel
{

/** Appends the folder of the stand-ins to PATH, so that a tool of the system goes first. */
void OfferStandIns();

/**
 * Takes the system's firewall tool, or the stand-in where the system has none, for this process, together
 * with the script that runs it. To be called once, before Firewall::GetInstance().
 *
 * @return Whether there is either.
 */
bool ChooseFirewallTool();

/** Where a tool is. */
struct ToolPlace
{
  QString name; ///< In the user's language.
  QString path; ///< Empty: there is none.
  bool isStandIn;
};

/** @return The firewall tool and the disk tool. */
QVector<ToolPlace> FindTools();

} // namespace Ostrel
