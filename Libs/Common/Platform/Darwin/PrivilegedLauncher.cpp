#include <Common/Platform/PrivilegedLauncher.h>

#include <Security/Authorization.h>

// The only call that starts an arbitrary tool as root is deprecated; its successors take an installed helper.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace Tavrik::Platform
{

struct PrivilegedSession
{
  AuthorizationRef authorization;
};

std::int32_t OpenPrivilegedSession(PrivilegedSession** session)
{
  AuthorizationRef authorization = nullptr;
  const OSStatus status = AuthorizationCreate(nullptr, kAuthorizationEmptyEnvironment,
                                              kAuthorizationFlagDefaults, &authorization);
  if (status == errAuthorizationSuccess)
    *session = new PrivilegedSession{authorization};
  return status;
}

void ClosePrivilegedSession(PrivilegedSession* session)
{
  // By these flags the shared credential cache keeps what was granted.
  AuthorizationFree(session->authorization, kAuthorizationFlagDefaults);
  delete session;
}

std::int32_t AskForPrivilege(PrivilegedSession* session, const char* toolPath, std::size_t toolPathLength)
{
  AuthorizationItem item = {"system.privilege.admin", toolPathLength, const_cast<char*>(toolPath), 0};
  const AuthorizationRights rights = {1, &item};
  return AuthorizationCopyRights(session->authorization, &rights, kAuthorizationEmptyEnvironment,
                                 kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights |
                                     kAuthorizationFlagPreAuthorize,
                                 nullptr);
}

// The system keeps what it has granted, and asks anew by itself.
bool HasPrivilege(const PrivilegedSession*)
{
  return true;
}

std::int32_t StartPrivileged(PrivilegedSession* session, const char* toolPath, const std::string*,
                             char* const* arguments, std::FILE** stream)
{
  return AuthorizationExecuteWithPrivileges(session->authorization, toolPath, kAuthorizationFlagDefaults,
                                            arguments, stream);
}

} // namespace Tavrik::Platform
