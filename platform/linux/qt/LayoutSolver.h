// Linear relations between numbers, solved exactly by priority.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <vector>

#include "platform/Layout.h"

namespace qt {

/// A one-shot solver. A required relation is never broken; one that cannot hold together with those added before it is
/// refused. The others are met from the highest priority to the lowest: each priority's sum of violations is the least
/// that those above it leave possible. The same calls always give the same values. Not thread-safe.
class LayoutSolver {
 public:
  using Variable = std::uint32_t;
  struct Term {
    Variable variable;
    double coefficient;
  };

  /// A variable that may take any value.
  Variable addPosition();
  /// A variable that is never negative.
  Variable addLength();
  /// `terms` plus `constant` stands in `relation` to zero; a variable may occur more than once. False when the relation
  /// is required and contradicts earlier required ones; it then counts for nothing.
  bool add(std::span<const Term> terms, double constant, ns::LayoutRelation relation, ns::LayoutPriority priority);
  /// Meets the relations that are not required. To be called once, after the last add().
  void solve();
  /// After solve(). A variable that nothing determines is 0.
  double value(Variable variable) const { return values_[variable]; }

 private:
  struct Row {
    Variable basic = 0;
    double constant = 0;
    std::vector<Term> terms;  // by ascending variable, over variables that have no row
  };
  struct Wish {
    Row expression;
    ns::LayoutRelation relation;
  };
  enum class Kind : std::uint8_t { Free, Restricted, Dead };
  static constexpr std::size_t noRow = static_cast<std::size_t>(-1);

  Variable addVariable(Kind kind);
  Row expand(const Row& expression);
  void accumulate(const std::vector<Term>& terms, double factor, double& constant);
  Row collect(double constant);
  static void substitute(Row& row, Variable variable, const Row& definition, std::vector<Term>& scratch);
  const Term* freeTerm(const Row& row) const;
  void defineFree(Row row, Variable variable);
  bool addRequired(Row row, bool equality);
  std::size_t addRow(Row row);
  void removeRow(std::size_t index);
  bool raiseToZero(std::size_t index, bool equality);
  void pivot(std::size_t index, Variable entering);
  void kill(Variable variable);
  std::size_t leavingRow(Variable entering) const;
  void solveLevel(const std::vector<Wish>& level);
  std::vector<Variable> addWishes(const std::vector<Wish>& level);
  void minimise(Row& objective);

  std::vector<Kind> kinds_;
  std::vector<std::size_t> rowOf_;  // of a restricted variable in rows_, of a free one in freeRows_
  std::vector<Row> rows_;           // restricted variables in terms of restricted ones without a row, never negative
  std::vector<Row> freeRows_;       // free variables in terms of others
  std::map<ns::LayoutPriority, std::vector<Wish>, std::greater<>> wishes_;
  std::vector<double> values_;
  std::vector<double> sums_;  // scratch of accumulate() and collect(), zero in between
  std::vector<Variable> touched_;
  std::vector<Term> merged_;
};

}  // namespace qt
