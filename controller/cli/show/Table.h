#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "controller/cli/show/Terminal.h"

namespace controller::cli {

/// Rows with columns that stand below each other, with two blanks between, as wide as they are
/// displayed. What does not fit on a terminal is cut in the columns that allow it, the widest
/// first.
class Table {
 public:
  struct Column {
    std::string title;
    bool toTheRight = false;
    /// May be cut where the terminal is too narrow.
    bool mayBeCut = false;
  };
  struct Cell {
    Cell(std::string cellText, Style cellStyle = Style::kPlain)
        : text(std::move(cellText)), style(cellStyle) {}
    Cell(const char* cellText) : text(cellText) {}
    std::string text;
    Style style = Style::kPlain;
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// One cell a column. Texts are made printable.
  void Add(std::vector<Cell> row);
  bool IsEmpty() const { return rows_.empty(); }
  void Write(const Terminal& terminal) const;

 private:
  std::vector<std::size_t> Widths(std::size_t available) const;
  void WriteRow(const Terminal& terminal, const std::vector<Cell>& row,
                const std::vector<std::size_t>& widths) const;

  std::vector<Column> columns_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace controller::cli
