#pragma once

#include <QStringList>
#include <QVector>

/** @file How texts look: columns, colours, tables. Texts that come in are safe to show. */
namespace Ostrel
{

/**
 * @param file A descriptor.
 * @return How many columns a line has: what COLUMNS says, else the size of the terminal that @p file is, else
 *         80.
 */
int GetWidth(int file);

/** @return Whether @p file is a terminal that understands more than plain lines. */
bool IsCapable(int file);

/** @return The columns that @p text takes on a terminal: two for wide characters, none for combining ones. */
int CountColumns(const QString& text);

/** @return @p text, its middle replaced by an ellipsis where it takes more than @p columns. */
QString Shorten(const QString& text, int columns);

/**
 * Colours for one stream: those that can be read on light and dark grounds, and none where they are not
 * wanted (NO_COLOR) or not understood.
 */
class Style
{
public:
  explicit Style(int file);
  explicit Style(bool isColourful) : isColourful(isColourful) {}

  QString Bold(const QString& text) const { return Wrap(text, "1"); }
  QString Dim(const QString& text) const { return Wrap(text, "2"); }
  QString Red(const QString& text) const { return Wrap(text, "31"); }
  QString Green(const QString& text) const { return Wrap(text, "32"); }
  QString Blue(const QString& text) const { return Wrap(text, "34"); }

private:
  QString Wrap(const QString& text, const char* code) const;

  bool isColourful;
};

/** Rows of cells in columns as wide as their widest cell, with two blanks between them. */
class Table
{
public:
  enum class Align
  {
    Left,
    Right
  };

  struct Column
  {
    QString title; ///< No line of titles where all are empty.
    Align align = Align::Left;
    bool mayShrink = false; ///< Whether its cells may be shortened where the line has no room.
  };

  using Paint = QString (Style::*)(const QString&) const;

  struct Cell
  {
    Cell(const QString& text, Paint paint = nullptr) : text(text), paint(paint) {} // not explicit: {"a", "b"}

    QString text;
    Paint paint;
  };

  using Row = QVector<Cell>;

  explicit Table(QVector<Column> columns) : columns(std::move(columns)) {}

  /** @param row One cell for each column. */
  void AddRow(const Row& row) { rows.append(row); }

  /**
   * @param width Columns of a line; 0 for no limit.
   * @return The lines, without blanks at their ends. They are longer than @p width where no more can be
   *         shortened.
   */
  QStringList ToLines(const Style& style, int width) const;

private:
  QVector<int> GetWidths(int width) const;
  QString ToLine(const Row& row, const QVector<int>& widths, const Style& style) const;

  QVector<Column> columns;
  QVector<Row> rows;
};

/** @return A bar of @p columns characters, @p fraction (0 to 1) of them full. */
QString MakeBar(double fraction, int columns);

} // namespace Ostrel
