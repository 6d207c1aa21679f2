// The solver behind Auto Layout: what must hold holds, and nothing is given up for something less important.
#include "platform/linux/qt/LayoutSolver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

using ns::LayoutRelation;
using qt::LayoutSolver;

namespace {

constexpr double exact = 1e-6;

struct Relation {
  std::vector<LayoutSolver::Term> terms;
  double constant;
  LayoutRelation relation;
  ns::LayoutPriority priority;

  template <typename Value>
  double violation(const Value& value) const {
    double sum = constant;
    for (const auto& term : terms) sum += term.coefficient * value(term.variable);
    switch (relation) {
      case LayoutRelation::LessThanOrEqual:
        return std::max(0.0, sum);
      case LayoutRelation::GreaterThanOrEqual:
        return std::max(0.0, -sum);
      case LayoutRelation::Equal:
        return std::abs(sum);
    }
    return 0;
  }
};

bool add(LayoutSolver& solver, const Relation& relation) {
  return solver.add(relation.terms, relation.constant, relation.relation, relation.priority);
}

class LayoutSolverTest : public testing::Test {
 protected:
  bool require(std::vector<LayoutSolver::Term> terms, double constant, LayoutRelation relation) {
    return solver.add(terms, constant, relation, 1000);
  }
  void wish(std::vector<LayoutSolver::Term> terms, double constant, LayoutRelation relation, float priority) {
    solver.add(terms, constant, relation, priority);
  }

  LayoutSolver solver;
};

using enum LayoutRelation;

TEST_F(LayoutSolverTest, AChainOfEqualitiesIsExact) {
  const auto left = solver.addPosition();
  const auto width = solver.addLength();
  const auto middle = solver.addPosition();
  EXPECT_TRUE(require({{middle, 1}, {left, -1}, {width, -0.5}}, 0, Equal));
  EXPECT_TRUE(require({{middle, 1}}, -100.25, Equal));
  EXPECT_TRUE(require({{width, 1}}, -70, Equal));
  solver.solve();
  EXPECT_NEAR(solver.value(left), 65.25, exact);
}

TEST_F(LayoutSolverTest, ALaterContradictionIsRefusedAndCountsForNothing) {
  const auto width = solver.addLength();
  const auto other = solver.addLength();
  EXPECT_TRUE(require({{width, 1}}, -70, Equal));
  EXPECT_TRUE(require({{width, 1}}, -70, Equal)) << "the same again is no contradiction";
  EXPECT_FALSE(require({{width, 1}}, -71, Equal));
  EXPECT_FALSE(require({{width, 1}}, -69, LessThanOrEqual));
  EXPECT_FALSE(require({{width, 1}, {other, 1}}, -60, Equal)) << "a length is never negative";
  EXPECT_TRUE(require({{other, 1}, {width, -1}}, 12, LessThanOrEqual));
  EXPECT_FALSE(require({{other, 1}, {width, -1}}, 10, GreaterThanOrEqual));
  wish({{other, 1}}, -1000, Equal, 250);
  solver.solve();
  EXPECT_NEAR(solver.value(width), 70, exact);
  EXPECT_NEAR(solver.value(other), 58, exact);
}

TEST_F(LayoutSolverTest, OneImportantWishOutweighsAnyNumberOfLesserOnes) {
  const auto width = solver.addLength();
  wish({{width, 1}}, -10, Equal, 751);
  for (int i = 0; i < 50; ++i) wish({{width, 1}}, -100, Equal, 750);
  solver.solve();
  EXPECT_NEAR(solver.value(width), 10, exact);
}

TEST_F(LayoutSolverTest, ARowGivesRoomByHuggingAndTakesItByCompression) {
  struct Case {
    double room;
    double label;
    double button;
  };
  // A label (hugging 250, compression 250, natural width 200) and a button (750, 750, 80) share a row.
  for (const auto& [room, label, button] :
       {Case{400, 320, 80}, Case{280, 200, 80}, Case{150, 70, 80}, Case{60, 0, 60}}) {
    LayoutSolver row;
    const auto first = row.addLength();
    const auto second = row.addLength();
    add(row, {{{first, 1}, {second, 1}}, -room, Equal, 1000});
    add(row, {{{first, 1}}, -200, LessThanOrEqual, 250});
    add(row, {{{first, 1}}, -200, GreaterThanOrEqual, 250});
    add(row, {{{second, 1}}, -80, LessThanOrEqual, 750});
    add(row, {{{second, 1}}, -80, GreaterThanOrEqual, 750});
    row.solve();
    EXPECT_NEAR(row.value(first), label, exact) << room;
    EXPECT_NEAR(row.value(second), button, exact) << room;
  }
}

/// The least sums of violations, priority by priority, over all points of a grid. The relations are over whole numbers
/// with coefficients of one, whose best corners lie on it.
class GridOracle {
 public:
  GridOracle(const std::vector<Relation>& relations, std::size_t variables, int most)
      : relations_(relations), values_(variables), most_(most) {
    for (const auto& relation : relations) levels_.push_back(relation.priority);
    std::sort(levels_.rbegin(), levels_.rend());
    levels_.erase(std::unique(levels_.begin(), levels_.end()), levels_.end());
    search(0);
  }

  static std::vector<double> sums(const std::vector<Relation>& relations, const std::vector<ns::LayoutPriority>& levels,
                                  const auto& value) {
    std::vector<double> result(levels.size());
    for (const auto& relation : relations) {
      const auto level = std::find(levels.begin(), levels.end(), relation.priority) - levels.begin();
      result[static_cast<std::size_t>(level)] += relation.violation(value);
    }
    return result;
  }

  const std::vector<ns::LayoutPriority>& levels() const { return levels_; }
  const std::vector<double>& best() const { return best_; }

 private:
  void search(std::size_t index) {
    if (index == values_.size()) {
      auto found = sums(relations_, levels_, [this](LayoutSolver::Variable v) { return values_[v]; });
      if (best_.empty() || found < best_) best_ = std::move(found);
      return;
    }
    for (int value = 0; value <= most_; ++value) {
      values_[index] = value;
      search(index + 1);
    }
  }

  const std::vector<Relation>& relations_;
  std::vector<double> values_;
  int most_;
  std::vector<ns::LayoutPriority> levels_;
  std::vector<double> best_;
};

unsigned testSeed() {
  const char* given = std::getenv("OSTREL_TEST_SEED");
  return given != nullptr ? static_cast<unsigned>(std::stoul(given)) : std::random_device{}();
}

// Differences and single variables with whole constants: every corner of such a system is whole, so that trying all
// whole points finds the true optimum.
TEST(LayoutSolverRandomTest, NoPointIsBetterThanTheSolvers) {
  const unsigned seed = testSeed();
  SCOPED_TRACE("OSTREL_TEST_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const auto upTo = [&random](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
  constexpr LayoutSolver::Variable count = 4;
  constexpr int most = 8;
  for (int round = 0; round < 150; ++round) {
    LayoutSolver solver;
    std::vector<Relation> kept;
    std::vector<bool> isLength;
    for (LayoutSolver::Variable v = 0; v < count; ++v) {
      isLength.push_back(upTo(1) == 1);
      if (isLength.back())
        solver.addLength();
      else
        solver.addPosition();
      // The grid's own edges, which make lengths of the positions too.
      kept.push_back({{{v, 1}}, 0, GreaterThanOrEqual, 1000});
      kept.push_back({{{v, 1}}, -most, LessThanOrEqual, 1000});
    }
    for (const auto& edge : kept) ASSERT_TRUE(add(solver, edge));
    for (int i = 0; i < 10; ++i) {
      Relation relation{{}, static_cast<double>(upTo(2 * most) - most), static_cast<LayoutRelation>(upTo(2)), 0};
      const auto first = static_cast<LayoutSolver::Variable>(upTo(count - 1));
      const auto second = static_cast<LayoutSolver::Variable>(upTo(count - 1));
      relation.terms.push_back({first, 1});
      if (second != first) relation.terms.push_back({second, -1});
      constexpr ns::LayoutPriority priorities[] = {1000, 750, 750, 250, 1};
      relation.priority = priorities[upTo(4)];
      if (add(solver, relation)) {
        kept.push_back(relation);
      } else {
        // Refused rightly: no point meets it together with the required ones before it.
        auto required = kept;
        std::erase_if(required, [](const Relation& r) { return r.priority < 1000; });
        required.push_back(relation);
        EXPECT_GT(GridOracle(required, count, most).best().front(), 0.5);
      }
    }
    solver.solve();
    const GridOracle oracle(kept, count, most);
    const auto value = [&solver](LayoutSolver::Variable v) { return solver.value(v); };
    const auto reached = GridOracle::sums(kept, oracle.levels(), value);
    for (std::size_t level = 0; level < reached.size(); ++level) {
      ASSERT_NEAR(reached[level], oracle.best()[level], exact)
          << "round " << round << ", priority " << oracle.levels()[level];
    }
  }
}

/// Random trees of nested boxes as a window has them: required insets, natural sizes, halves.
TEST(LayoutSolverRandomTest, AWindowFullOfBoxesIsSolvedExactlyAndTheSameEachTime) {
  const unsigned seed = testSeed();
  SCOPED_TRACE("OSTREL_TEST_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const auto upTo = [&random](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
  for (int round = 0; round < 20; ++round) {
    std::vector<Relation> relations{{{{0, 1}}, 0, Equal, 1000}, {{{1, 1}}, -700, Equal, 999}};
    constexpr LayoutSolver::Variable boxes = 150;
    for (LayoutSolver::Variable box = 1; box < boxes; ++box) {
      const auto parent = static_cast<LayoutSolver::Variable>(upTo(static_cast<int>(box) - 1));
      const LayoutSolver::Variable left = 2 * box, width = left + 1, outerLeft = 2 * parent, outerWidth = outerLeft + 1;
      const double inset = upTo(16);
      if (upTo(3) == 0) {
        relations.push_back({{{left, 1}, {width, 0.5}, {outerLeft, -1}, {outerWidth, -0.5}}, 0, Equal, 1000});
      } else {
        relations.push_back({{{left, 1}, {outerLeft, -1}}, -inset, Equal, 1000});
      }
      relations.push_back({{{left, 1}, {width, 1}, {outerLeft, -1}, {outerWidth, -1}}, inset, LessThanOrEqual, 1000});
      relations.push_back({{{width, 1}}, static_cast<double>(-upTo(300)), GreaterThanOrEqual, upTo(1) ? 750.F : 250.F});
      relations.push_back({{{width, 1}}, static_cast<double>(-upTo(300)), LessThanOrEqual, upTo(1) ? 751.F : 249.F});
    }
    std::vector<std::vector<double>> answers;
    for (int attempt = 0; attempt < 2; ++attempt) {
      LayoutSolver solver;
      for (LayoutSolver::Variable box = 0; box < boxes; ++box) {
        solver.addPosition();
        solver.addLength();
      }
      std::vector<const Relation*> required;
      for (const auto& relation : relations) {
        if (add(solver, relation) && relation.priority == 1000) required.push_back(&relation);
      }
      EXPECT_EQ(required.size(), 1 + 2 * (boxes - 1)) << "everything fits into a window of any width";
      solver.solve();
      const auto value = [&solver](LayoutSolver::Variable v) { return solver.value(v); };
      for (const auto* relation : required) ASSERT_NEAR(relation->violation(value), 0, exact);
      auto& answer = answers.emplace_back();
      for (LayoutSolver::Variable v = 0; v < 2 * boxes; ++v) answer.push_back(solver.value(v));
    }
    EXPECT_EQ(answers[0], answers[1]);
  }
}

}  // namespace
