#pragma once

#include <Security/Authorization.h>

#include <cstdint>
#include <string>
#include <vector>

/** A call of Authorization Services, with all that it was given. */
struct AuthorizationCall
{
  std::string name;
  AuthorizationRef authorization = nullptr;
  AuthorizationFlags flags = 0;
  bool hasRights = false;
  bool hasEnvironment = false;

  std::vector<AuthorizationItem> items; ///< Of AuthorizationCopyRights; the pointers may be stale.
  std::string itemName;
  std::string itemValue; ///< As many bytes as the item's length says.
  char afterValue = 0;   ///< The byte behind them.
  bool wantsGrantedRights = false;

  std::string toolPath; ///< Of AuthorizationExecuteWithPrivileges.
  std::vector<std::string> arguments;
};

/** What stands behind the calls of Authorization Services on a machine that has none. */
struct RecordingAuthorization
{
  std::vector<AuthorizationCall> calls;

  // What the next calls give back.
  OSStatus createStatus = errAuthorizationSuccess;
  OSStatus copyRightsStatus = errAuthorizationSuccess;
  OSStatus executeStatus = errAuthorizationSuccess;
  std::string toolOutput;          ///< What the started tool writes.
  std::FILE* toolStream = nullptr; ///< The stream that the last start gave; open unless somebody closed it.

  std::vector<std::string> Names() const;
  static RecordingAuthorization& Get();
};
