// The simplex method on sparse rows, one objective after the other.
//
// A row states a variable in terms of variables without a row, which stand at zero. Free variables are solved for as
// soon as they turn up and then only ride along, so that the simplex steps run over lengths, slacks and violations.
#include "platform/linux/qt/LayoutSolver.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace qt {
namespace {

// Coefficients are small whole numbers and halves, constants are points.
constexpr double negligible = 1e-9;
constexpr double tolerance = 1e-6;

double coefficientOf(const std::vector<LayoutSolver::Term>& terms, LayoutSolver::Variable variable) {
  const auto found = std::lower_bound(
      terms.begin(), terms.end(), variable,
      [](const LayoutSolver::Term& term, LayoutSolver::Variable wanted) { return term.variable < wanted; });
  return found != terms.end() && found->variable == variable ? found->coefficient : 0;
}

}  // namespace

LayoutSolver::Variable LayoutSolver::addPosition() { return addVariable(Kind::Free); }

LayoutSolver::Variable LayoutSolver::addLength() { return addVariable(Kind::Restricted); }

LayoutSolver::Variable LayoutSolver::addVariable(Kind kind) {
  kinds_.push_back(kind);
  rowOf_.push_back(noRow);
  values_.push_back(0);
  sums_.push_back(0);
  return static_cast<Variable>(kinds_.size() - 1);
}

bool LayoutSolver::add(std::span<const Term> terms, double constant, ns::LayoutRelation relation,
                       ns::LayoutPriority priority) {
  Row expression;
  expression.constant = constant;
  expression.terms.assign(terms.begin(), terms.end());
  if (relation == ns::LayoutRelation::LessThanOrEqual) {
    expression.constant = -expression.constant;
    for (auto& term : expression.terms) term.coefficient = -term.coefficient;
    relation = ns::LayoutRelation::GreaterThanOrEqual;
  }
  if (priority >= ns::LayoutPriorityRequired) {
    return addRequired(expand(expression), relation == ns::LayoutRelation::Equal);
  }
  wishes_[priority].push_back({std::move(expression), relation});
  return true;
}

void LayoutSolver::accumulate(const std::vector<Term>& terms, double factor, double& constant) {
  for (const auto& term : terms) {
    const double coefficient = term.coefficient * factor;
    const std::size_t row = rowOf_[term.variable];
    if (kinds_[term.variable] == Kind::Dead) continue;
    if (row != noRow) {
      const Row& definition = kinds_[term.variable] == Kind::Free ? freeRows_[row] : rows_[row];
      constant += coefficient * definition.constant;
      accumulate(definition.terms, coefficient, constant);
    } else {
      if (sums_[term.variable] == 0) touched_.push_back(term.variable);
      sums_[term.variable] += coefficient;
    }
  }
}

LayoutSolver::Row LayoutSolver::collect(double constant) {
  std::sort(touched_.begin(), touched_.end());
  Row row;
  row.constant = constant;
  for (const Variable variable : touched_) {
    if (std::abs(sums_[variable]) > negligible) row.terms.push_back({variable, sums_[variable]});
    sums_[variable] = 0;
  }
  touched_.clear();
  return row;
}

/// The expression over variables without a row.
LayoutSolver::Row LayoutSolver::expand(const Row& expression) {
  double constant = expression.constant;
  accumulate(expression.terms, 1, constant);
  return collect(constant);
}

/// Replaces `variable` in `row` by what `definition` says it is.
void LayoutSolver::substitute(Row& row, Variable variable, const Row& definition, std::vector<Term>& scratch) {
  const double factor = coefficientOf(row.terms, variable);
  if (factor == 0) return;
  scratch.clear();
  row.constant += factor * definition.constant;
  auto one = row.terms.begin();
  auto other = definition.terms.begin();
  while (one != row.terms.end() || other != definition.terms.end()) {
    if (other == definition.terms.end() || (one != row.terms.end() && one->variable < other->variable)) {
      if (one->variable != variable) scratch.push_back(*one);
      ++one;
      continue;
    }
    double coefficient = factor * other->coefficient;
    if (one != row.terms.end() && one->variable == other->variable) coefficient += (one++)->coefficient;
    if (std::abs(coefficient) > negligible) scratch.push_back({other->variable, coefficient});
    ++other;
  }
  row.terms.swap(scratch);
}

const LayoutSolver::Term* LayoutSolver::freeTerm(const Row& row) const {
  for (const auto& term : row.terms) {
    if (kinds_[term.variable] == Kind::Free) return &term;
  }
  return nullptr;
}

/// Solves `row` == 0 for the free `variable`.
void LayoutSolver::defineFree(Row row, Variable variable) {
  const double divisor = -coefficientOf(row.terms, variable);
  std::erase_if(row.terms, [&](const Term& term) { return term.variable == variable; });
  row.basic = variable;
  row.constant /= divisor;
  for (auto& term : row.terms) term.coefficient /= divisor;
  rowOf_[variable] = freeRows_.size();
  freeRows_.push_back(std::move(row));
}

bool LayoutSolver::addRequired(Row row, bool equality) {
  if (row.terms.empty()) return equality ? std::abs(row.constant) <= tolerance : row.constant >= -tolerance;
  if (const Term* term = freeTerm(row)) {
    const Variable variable = term->variable;
    if (!equality) row.terms.push_back({addVariable(Kind::Restricted), -1});
    defineFree(std::move(row), variable);
    return true;
  }
  if (equality && row.constant > 0) {
    row.constant = -row.constant;
    for (auto& term : row.terms) term.coefficient = -term.coefficient;
  }
  row.basic = addVariable(Kind::Restricted);
  const std::size_t index = addRow(std::move(row));
  if (!equality && rows_[index].constant >= -tolerance) {
    rows_[index].constant = std::max(0.0, rows_[index].constant);
    return true;
  }
  return raiseToZero(index, equality);
}

std::size_t LayoutSolver::addRow(Row row) {
  rowOf_[row.basic] = rows_.size();
  rows_.push_back(std::move(row));
  return rows_.size() - 1;
}

void LayoutSolver::removeRow(std::size_t index) {
  rowOf_[rows_[index].basic] = noRow;
  kinds_[rows_[index].basic] = Kind::Dead;
  if (index != rows_.size() - 1) {
    rows_[index] = std::move(rows_.back());
    rowOf_[rows_[index].basic] = index;
  }
  rows_.pop_back();
}

/// Brings the negative variable of a new row up to zero, the others staying at zero or above. Of an equality the
/// variable then leaves for good. When it cannot be done the row is taken out again, and with it the relation.
bool LayoutSolver::raiseToZero(std::size_t index, bool equality) {
  const Variable variable = rows_[index].basic;
  while (true) {
    Row& row = rows_[rowOf_[variable]];
    const bool atZero = std::abs(row.constant) <= tolerance;
    if (atZero) row.constant = 0;
    if (atZero && !equality) return true;
    // The first variable that helps: with the first of equally good rows below, this never runs in circles.
    const auto entering = std::find_if(row.terms.begin(), row.terms.end(), [&](const Term& term) {
      return atZero ? std::abs(term.coefficient) > negligible : term.coefficient > negligible;
    });
    if (entering == row.terms.end()) {
      removeRow(rowOf_[variable]);
      return atZero;
    }
    const Variable helper = entering->variable;
    const double needed = atZero ? 0 : -row.constant / entering->coefficient;
    const std::size_t limit = atZero ? noRow : leavingRow(helper);
    const bool reached = limit == noRow || -rows_[limit].constant / coefficientOf(rows_[limit].terms, helper) >= needed;
    pivot(reached ? rowOf_[variable] : limit, helper);
    if (!reached) continue;
    if (equality) kill(variable);
    return true;
  }
}

/// Has `entering` take over the row, whose variable goes to zero.
void LayoutSolver::pivot(std::size_t index, Variable entering) {
  Row& row = rows_[index];
  const Variable leaving = row.basic;
  const double divisor = -coefficientOf(row.terms, entering);
  std::erase_if(row.terms, [&](const Term& term) { return term.variable == entering; });
  row.terms.insert(std::lower_bound(row.terms.begin(), row.terms.end(), leaving,
                                    [](const Term& term, Variable wanted) { return term.variable < wanted; }),
                   {leaving, -1});
  row.constant /= divisor;
  for (auto& term : row.terms) term.coefficient /= divisor;
  row.basic = entering;
  rowOf_[leaving] = noRow;
  rowOf_[entering] = index;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (i == index) continue;
    substitute(rows_[i], entering, row, merged_);
    // Rounding must not let a variable slip below zero.
    if (rows_[i].constant < 0 && rows_[i].constant > -tolerance) rows_[i].constant = 0;
  }
}

/// Keeps a variable without a row at zero from now on.
void LayoutSolver::kill(Variable variable) {
  kinds_[variable] = Kind::Dead;
  for (auto& row : rows_) std::erase_if(row.terms, [&](const Term& term) { return term.variable == variable; });
}

/// The row that first reaches zero when `entering` grows; noRow when none does. Negative rows do not count.
std::size_t LayoutSolver::leavingRow(Variable entering) const {
  std::size_t best = noRow;
  double bestRatio = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const double coefficient = coefficientOf(rows_[i].terms, entering);
    if (coefficient >= -negligible || rows_[i].constant < 0) continue;
    const double ratio = -rows_[i].constant / coefficient;
    if (ratio < bestRatio || (ratio == bestRatio && rows_[i].basic < rows_[best].basic)) {
      best = i;
      bestRatio = ratio;
    }
  }
  return best;
}

void LayoutSolver::solve() {
  for (const auto& [priority, level] : wishes_) solveLevel(level);
  for (const auto& row : rows_) values_[row.basic] = row.constant;
  // A free row can only speak of free variables that got their rows later.
  for (auto row = freeRows_.rbegin(); row != freeRows_.rend(); ++row) {
    double sum = row->constant;
    for (const auto& term : row->terms) sum += term.coefficient * values_[term.variable];
    values_[row->basic] = sum;
  }
}

void LayoutSolver::solveLevel(const std::vector<Wish>& level) {
  Row violations;
  for (const Variable violation : addWishes(level)) violations.terms.push_back({violation, 1});
  Row objective = expand(violations);
  minimise(objective);
  // What would cost something at this level is no longer there for the levels below.
  for (const auto& term : objective.terms) {
    if (term.coefficient > negligible) kill(term.variable);
  }
}

/// Gives each relation a row and returns the variables that measure violations.
std::vector<LayoutSolver::Variable> LayoutSolver::addWishes(const std::vector<Wish>& level) {
  std::vector<Variable> violations;
  for (const auto& wish : level) {
    Row row = expand(wish.expression);
    if (row.terms.empty()) continue;
    // row == over - under, with one of the two at zero.
    const Variable over = addVariable(Kind::Restricted);
    const Variable under = addVariable(Kind::Restricted);
    violations.push_back(under);
    if (wish.relation == ns::LayoutRelation::Equal) violations.push_back(over);
    if (const Term* term = freeTerm(row)) {
      const Variable variable = term->variable;
      row.terms.push_back({over, -1});
      row.terms.push_back({under, 1});
      defineFree(std::move(row), variable);
    } else if (row.constant >= 0) {
      row.terms.push_back({under, 1});
      row.basic = over;
      addRow(std::move(row));
    } else {
      row.constant = -row.constant;
      for (auto& t : row.terms) t.coefficient = -t.coefficient;
      row.terms.push_back({over, 1});
      row.basic = under;
      addRow(std::move(row));
    }
  }
  return violations;
}

void LayoutSolver::minimise(Row& objective) {
  while (true) {
    const auto entering = std::find_if(objective.terms.begin(), objective.terms.end(),
                                       [](const Term& term) { return term.coefficient < -negligible; });
    if (entering == objective.terms.end()) return;
    const Variable variable = entering->variable;
    const std::size_t leaving = leavingRow(variable);
    if (leaving == noRow) return;  // a sum of violations has a least value: only rounding leads here
    pivot(leaving, variable);
    substitute(objective, variable, rows_[leaving], merged_);
  }
}

}  // namespace qt
