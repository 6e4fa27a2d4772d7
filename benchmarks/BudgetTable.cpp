#include "benchmarks/BudgetTable.h"
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <utility>

namespace kestrel {

namespace {

double percentile(const std::vector<double> &sorted, double fraction)
{
    return sorted[static_cast<size_t>(fraction * static_cast<double>(sorted.size() - 1))];
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

BudgetTable::BudgetTable(std::string heading, std::vector<Budget> budgets)
    : m_heading(std::move(heading))
    , m_budgets(std::move(budgets))
{
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
        if (run.error_occurred)
            std::printf("%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
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
    std::printf("%-44s %9s %9s %9s %9s %6s\n", m_heading.c_str(), "min", "median", "p99", "budget", "ratio");
    for (const Budget &budget : m_budgets) {
        const auto measured = m_measured.find(budget.benchmark);
        if (measured == m_measured.end())
            continue;
        const Times &times = measured->second;
        std::printf("%-44s %9.4f %9.4f %9.4f ", budget.benchmark.c_str(), times.min, times.median, times.p99);

        const auto compared = m_measured.find(budget.comparedTo);
        const bool isRelative = compared != m_measured.end();
        const double limit = isRelative ? budget.factor * compared->second.min : budget.milliseconds;
        if (limit > 0) {
            const double held = isRelative ? times.min : budget.ofWorst ? times.p99 : times.median;
            const double ratio = held / limit;
            std::printf("%9.4f %6.2f  %s", limit, ratio, ratio <= 1 ? "within" : "OVER");
        }
        if (isRelative)
            std::printf("  %g x %s", budget.factor, budget.comparedTo.c_str());
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
