#include "benchmarks/BudgetTable.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <utility>

namespace kestrel {

namespace {

/// The least value that at least this share of all does not exceed; of few values the 99th is the largest.
double percentile(const std::vector<double> &sorted, double fraction)
{
    return sorted[static_cast<size_t>(std::ceil(fraction * static_cast<double>(sorted.size()))) - 1];
}

/// The processor time of this thread: what other programs take away meanwhile does not count.
double threadMilliseconds()
{
    timespec time {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return percentile(values, 0.5);
}

} // namespace

BudgetTable::BudgetTable(std::string unit, std::vector<Budget> budgets)
    : m_unit(std::move(unit))
    , m_budgets(std::move(budgets))
{
}

int BudgetTable::run()
{
    benchmark::RunSpecifiedBenchmarks(this);
    benchmark::Shutdown();
    return m_hasFailed ? 1 : 0;
}

bool BudgetTable::ReportContext(const Context &context)
{
    PrintBasicContext(&GetErrorStream(), context);
    return true;
}

void BudgetTable::ReportRuns(const std::vector<Run> &runs)
{
    std::map<std::string, std::vector<double>> figures;
    std::string name;
    for (const Run &run : runs) {
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
            m_hasFailed = true;
        }
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        name = run.run_name.function_name;
        for (const char *figure : { "min", "median", "p99" })
            figures[figure].push_back(run.counters.at(figure));
    }
    if (name.empty())
        return;
    const std::vector<double> &minima = figures["min"];
    m_measured[name] = { *std::min_element(minima.begin(), minima.end()), medianOf(figures["median"]),
                         medianOf(figures["p99"]) };
}

void BudgetTable::Finalize()
{
    for (const Budget &budget : m_budgets) {
        const auto measured = m_measured.find(budget.benchmark);
        if (measured == m_measured.end())
            continue;
        const Times &times = measured->second;
        std::printf("%s\t%s\t%g\t%g\t%g", budget.benchmark.c_str(), m_unit.c_str(), times.min, times.median,
                    times.p99);
        const auto compared = m_measured.find(budget.comparedTo);
        if (compared != m_measured.end())
            std::printf("\t%g\t%g\tminima, %g x %s", times.min, budget.factor * compared->second.min,
                        budget.factor, budget.comparedTo.c_str());
        else if (budget.milliseconds > 0)
            std::printf("\t%g\t%g\t%s", budget.ofWorst ? times.p99 : times.median, budget.milliseconds,
                        budget.ofWorst ? "p99" : "");
        std::printf("\n");
    }
}

void report(benchmark::State &state, std::vector<double> milliseconds)
{
    std::sort(milliseconds.begin(), milliseconds.end());
    state.counters["min"] = milliseconds.front();
    state.counters["median"] = percentile(milliseconds, 0.5);
    state.counters["p99"] = percentile(milliseconds, 0.99);
}

void measure(benchmark::State &state, const std::function<void()> &work)
{
    std::vector<double> times;
    for ([[maybe_unused]] auto iteration : state) {
        const double begin = threadMilliseconds();
        work();
        times.push_back(threadMilliseconds() - begin);
    }
    report(state, std::move(times));
}

} // namespace kestrel
