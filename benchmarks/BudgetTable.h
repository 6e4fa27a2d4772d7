#pragma once
#include <benchmark/benchmark.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kestrel {

/// What a benchmark may cost: a time, or a multiple of what another benchmark of the same run costs. One with
/// neither is there to be compared with.
struct Budget
{
    std::string benchmark;
    double milliseconds = 0;
    std::string comparedTo = {};
    double factor = 1;
    bool ofWorst = false; ///< a time is held against the 99th percentile instead of the median
};

/// Prints one row a budget, in their order, in the columns that tools/bench makes tables of (row() of
/// process_figures.py is the same for programs in Python). Held against a time is the median; held against
/// another benchmark are both minima, because a busy machine slows down what allocates memory more than what
/// does not. Of several repetitions min is the least, the others are medians. A benchmark that did not run in
/// this run is left out.
class BudgetTable final : public benchmark::BenchmarkReporter
{
public:
    /// `unit` says what the figures are of: "ms" by the clock, "ms CPU" of the processor.
    BudgetTable(std::string unit, std::vector<Budget> budgets);

    /// Runs all benchmarks that the command line asks for. The program's exit code: 1 when one of them
    /// failed, and 0 also when a budget is missed, since machines differ.
    [[nodiscard]] int run();

private:
    struct Times
    {
        double min = 0;
        double median = 0;
        double p99 = 0;
    };

    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

    std::string m_unit;
    std::vector<Budget> m_budgets;
    std::map<std::string, Times> m_measured;
    bool m_hasFailed = false;
};

/// Leaves min, median and p99 of `milliseconds` (not empty) in the counters that the table reads.
void report(benchmark::State &state, std::vector<double> milliseconds);

/// Runs `work` once an iteration and reports the processor time of each run.
void measure(benchmark::State &state, const std::function<void()> &work);

} // namespace kestrel
