#include <Common/Platform/SettingsStore.h>

namespace Tavrik::Platform
{

// The preferences daemon takes each key by itself and knows its readers.
bool WriteStore(const QSettings& store, const QVariantMap& changes)
{
  // The status of a QSettings stays what its first error made it.
  QSettings writer(store.organizationName(), store.applicationName());
  for (auto change = changes.begin(); change != changes.end(); ++change)
    writer.setValue(change.key(), change.value());
  writer.sync();
  return writer.status() == QSettings::NoError;
}

// The file belongs to the preferences daemon.
bool IsStoreDamaged(const QSettings&)
{
  return false;
}

} // namespace Tavrik::Platform
