#include "Support/Outputs.h"

namespace Outputs
{

namespace
{

Tool* current = nullptr;

} // namespace

void Set(const Tool& tool)
{
  static Tool set;
  set = tool;
  current = &set;
}

QList<QByteArray> Split(const std::uint8_t* data, std::size_t size)
{
  return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)).split('\x1e');
}

QString Text(const QByteArray& output)
{
  return QString::fromLocal8Bit(output);
}

} // namespace Outputs

namespace Tavrik::Cleaner
{

QString ReadProcess(const QString&, const QStringList& arguments)
{
  return Outputs::current ? Outputs::Text((*Outputs::current)(arguments)) : QString();
}

QString ReadProcess(const QString& program, const QString& a1)
{
  return ReadProcess(program, QStringList{a1});
}

} // namespace Tavrik::Cleaner
