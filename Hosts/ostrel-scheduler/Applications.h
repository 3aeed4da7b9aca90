#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace Ostrel
{

/**
 * @return The names of the application bundles in @p folder, that is of the folders "*.app" which are no
 *         links, in order; nothing when they cannot all be seen. Names that are no UTF-8 are left out.
 */
std::optional<QStringList> ListApplications(const QString& folder);

} // namespace Ostrel
