#include <Common/Platform/SettingsStore.h>

namespace Tavrik::Platform
{

// The preferences daemon takes each key by itself and knows its readers.
void ChangeStore(const QString&, const std::function<void()>& change)
{
  change();
}

} // namespace Tavrik::Platform
