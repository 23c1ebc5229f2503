#include "controller/cli/show/Table.h"

#include <algorithm>
#include <numeric>

#include "controller/Printable.h"
#include "controller/cli/show/DisplayWidth.h"

namespace controller::cli {

namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowest = 8;

}  // namespace

void Table::Add(std::vector<Cell> row) {
  row.resize(columns_.size(), Cell(""));
  for (Cell& cell : row) cell.text = Printable(cell.text);
  rows_.push_back(std::move(row));
}

std::vector<std::size_t> Table::Widths(std::size_t available) const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = DisplayWidth(columns_[i].title);
    for (const auto& row : rows_) width = std::max(width, DisplayWidth(row[i].text));
    widths.push_back(width);
  }
  if (available == 0 || widths.empty()) return widths;
  const std::size_t gaps = kGap * (widths.size() - 1);
  while (std::accumulate(widths.begin(), widths.end(), gaps) > available) {
    std::size_t* widest = nullptr;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::size_t least = std::max(kNarrowest, DisplayWidth(columns_[i].title));
      if (!columns_[i].mayBeCut || widths[i] <= least) continue;
      if (widest == nullptr || widths[i] > *widest) widest = &widths[i];
    }
    if (widest == nullptr) break;
    --*widest;
  }
  return widths;
}

void Table::Write(const Terminal& terminal) const {
  const std::vector<std::size_t> widths = Widths(terminal.width);
  std::vector<Cell> titles;
  for (const Column& column : columns_) titles.emplace_back(column.title, Style::kBold);
  WriteRow(terminal, titles, widths);
  for (const auto& row : rows_) WriteRow(terminal, row, widths);
}

void Table::WriteRow(const Terminal& terminal, const std::vector<Cell>& row,
                     const std::vector<std::size_t>& widths) const {
  std::string line;
  // Blanks are owed until something stands behind them: no line ends with any.
  std::size_t blanks = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const bool cut = columns_[i].mayBeCut && terminal.width > 0;
    const std::string text = cut ? CutToWidth(row[i].text, widths[i]) : row[i].text;
    const std::size_t width = DisplayWidth(text);
    const std::size_t rest = widths[i] > width ? widths[i] - width : 0;
    if (columns_[i].toTheRight) blanks += rest;
    if (!text.empty()) {
      line.append(blanks, ' ');
      blanks = 0;
      line += terminal.Styled(text, row[i].style);
    }
    blanks += kGap + (columns_[i].toTheRight ? 0 : rest);
  }
  terminal.out << line << '\n';
}

}  // namespace controller::cli
