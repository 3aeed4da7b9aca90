#pragma once

// The few names of Authorization Services that the library uses, with their types and values, for machines
// without Apple's headers.

#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C"
{

  typedef std::int32_t OSStatus;
  typedef std::uint32_t UInt32;

  struct AuthorizationOpaqueRef;
  typedef const AuthorizationOpaqueRef* AuthorizationRef;
  typedef const char* AuthorizationString;
  typedef UInt32 AuthorizationFlags;

  enum : AuthorizationFlags
  {
    kAuthorizationFlagDefaults = 0,
    kAuthorizationFlagInteractionAllowed = 1u << 0,
    kAuthorizationFlagExtendRights = 1u << 1,
    kAuthorizationFlagPreAuthorize = 1u << 4
  };

  enum : OSStatus
  {
    errAuthorizationSuccess = 0,
    errAuthorizationDenied = -60005,
    errAuthorizationCanceled = -60006,
    errAuthorizationInternal = -60008,
    errAuthorizationToolExecuteFailure = -60031
  };

  struct AuthorizationItem
  {
    AuthorizationString name;
    std::size_t valueLength;
    void* value;
    UInt32 flags;
  };

  struct AuthorizationItemSet
  {
    UInt32 count;
    AuthorizationItem* items;
  };

  typedef AuthorizationItemSet AuthorizationRights;
  typedef AuthorizationItemSet AuthorizationEnvironment;

#define kAuthorizationEmptyEnvironment nullptr

  OSStatus AuthorizationCreate(const AuthorizationRights* rights, const AuthorizationEnvironment* environment,
                               AuthorizationFlags flags, AuthorizationRef* authorization);

  OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags);

  OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights* rights,
                                   const AuthorizationEnvironment* environment, AuthorizationFlags flags,
                                   AuthorizationRights** authorizedRights);

  [[deprecated]] OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization,
                                                             const char* pathToTool,
                                                             AuthorizationFlags options,
                                                             char* const* arguments,
                                                             std::FILE** communicationsPipe);
}
