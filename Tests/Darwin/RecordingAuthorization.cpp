#include "Darwin/RecordingAuthorization.h"

namespace
{

// References are told apart by their order: the first one made is 1.
AuthorizationRef lastReference = nullptr;

AuthorizationCall& Record(const char* name, AuthorizationRef authorization, AuthorizationFlags flags)
{
  AuthorizationCall call;
  call.name = name;
  call.authorization = authorization;
  call.flags = flags;
  RecordingAuthorization::Get().calls.push_back(call);
  return RecordingAuthorization::Get().calls.back();
}

} // namespace

RecordingAuthorization& RecordingAuthorization::Get()
{
  static RecordingAuthorization instance;
  return instance;
}

std::vector<std::string> RecordingAuthorization::Names() const
{
  std::vector<std::string> names;
  for (const AuthorizationCall& call : calls)
    names.push_back(call.name);
  return names;
}

OSStatus AuthorizationCreate(const AuthorizationRights* rights, const AuthorizationEnvironment* environment,
                             AuthorizationFlags flags, AuthorizationRef* authorization)
{
  AuthorizationCall& call = Record("Create", nullptr, flags);
  call.hasRights = rights != nullptr;
  call.hasEnvironment = environment != nullptr && environment->count > 0;
  const OSStatus status = RecordingAuthorization::Get().createStatus;
  if (status == errAuthorizationSuccess)
  {
    lastReference = reinterpret_cast<AuthorizationRef>(reinterpret_cast<std::uintptr_t>(lastReference) + 1);
    *authorization = lastReference;
  }
  return status;
}

OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags)
{
  Record("Free", authorization, flags);
  return errAuthorizationSuccess;
}

OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights* rights,
                                 const AuthorizationEnvironment* environment, AuthorizationFlags flags,
                                 AuthorizationRights** authorizedRights)
{
  AuthorizationCall& call = Record("CopyRights", authorization, flags);
  call.hasRights = rights != nullptr;
  call.hasEnvironment = environment != nullptr && environment->count > 0;
  call.wantsGrantedRights = authorizedRights != nullptr;
  if (rights)
    call.items.assign(rights->items, rights->items + rights->count);
  if (!call.items.empty())
  {
    const AuthorizationItem& item = call.items.front();
    call.itemName = item.name;
    call.itemValue.assign(static_cast<const char*>(item.value), item.valueLength);
    call.afterValue = static_cast<const char*>(item.value)[item.valueLength];
  }
  return RecordingAuthorization::Get().copyRightsStatus;
}

OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const char* pathToTool,
                                            AuthorizationFlags options, char* const* arguments,
                                            std::FILE** communicationsPipe)
{
  AuthorizationCall& call = Record("ExecuteWithPrivileges", authorization, options);
  call.toolPath = pathToTool;
  for (; *arguments; ++arguments)
    call.arguments.push_back(*arguments);

  RecordingAuthorization& recording = RecordingAuthorization::Get();
  if (recording.executeStatus != errAuthorizationSuccess)
    return recording.executeStatus;
  recording.toolStream = std::tmpfile();
  std::fwrite(recording.toolOutput.data(), 1, recording.toolOutput.size(), recording.toolStream);
  std::rewind(recording.toolStream);
  *communicationsPipe = recording.toolStream;
  return errAuthorizationSuccess;
}
