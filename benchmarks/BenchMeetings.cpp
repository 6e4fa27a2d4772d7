#include "base/Clock.h"
#include "benchmarks/BudgetTable.h"
#include "benchmarks/SampleTexts.h"
#include "google/CalendarDecoder.h"
#include "google/GoogleEventMapper.h"
#include "model/EventStore.h"
#include <QJsonDocument>
#include <array>
#include <functional>
#include <simdjson.h>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr int pageEvents = 250;
constexpr std::array eventCounts { 250, 1000, 2500, 5000, 10'000 };
constexpr qsizetype megabyte = 1'000'000;
constexpr int heldMeetings = 10'000;

/// Linear, with an allowance for fresh pages and for what no longer fits into the processor's caches.
/// (Quadratic growth would make it forty.)
constexpr double allowedGrowth = 2;
/// Milliseconds for a megabyte.
constexpr double linkBudget = 10;

/// What the store is asked and what it may take of the main thread.
constexpr double queryBudget = 0.5;
constexpr double replaceBudget = 3;

QList<Meeting> mapAll(const Google::EventsListResponse &answer)
{
    const GoogleEventMapper mapper;
    const GoogleEventMapper::Origin origin {
        .accountID = u"account"_s,
        .calendarID = u"primary"_s,
        .calendarColorHex = u"#4986e7"_s,
        .accountEmail = u"ana@example.com"_s,
    };
    QList<Meeting> meetings;
    meetings.reserve(answer.items.size());
    for (const Google::Event &event : answer.items) {
        if (auto meeting = mapper.map(event, origin))
            meetings.append(*std::move(meeting));
    }
    return meetings;
}

QList<Meeting> decodeAndMap(const QByteArray &json)
{
    const auto answer = decodeEventsList(json);
    return answer ? mapAll(*answer) : QList<Meeting>();
}

void add(const std::string &name, const std::function<void(benchmark::State &)> &run)
{
    benchmark::RegisterBenchmark(name.c_str(), run);
}

void registerDecoding(std::vector<Budget> &budgets)
{
    for (const int events : eventCounts) {
        const std::string suffix = '/' + std::to_string(events);
        add("decode and map" + suffix, [events](benchmark::State &state) {
            const QByteArray json = sampleEventsList(events);
            if (decodeAndMap(json).size() != events) {
                state.SkipWithError("the sample does not decode");
                return;
            }
            measure(state, [&] { benchmark::DoNotOptimize(decodeAndMap(json)); });
        });
        if (events > pageEvents) {
            budgets.push_back({ .benchmark = "decode and map" + suffix,
                                .comparedTo = "decode and map/" + std::to_string(pageEvents),
                                .factor = allowedGrowth * events / pageEvents });
            continue;
        }
        add("decode" + suffix, [events](benchmark::State &state) {
            const QByteArray json = sampleEventsList(events);
            measure(state, [&] { benchmark::DoNotOptimize(decodeEventsList(json)); });
        });
        add("map" + suffix, [events](benchmark::State &state) {
            const auto answer = decodeEventsList(sampleEventsList(events)).value();
            measure(state, [&] { benchmark::DoNotOptimize(mapAll(answer)); });
        });
        add("simdjson" + suffix, [events](benchmark::State &state) {
            const QByteArray json = sampleEventsList(events);
            const simdjson::padded_string padded(json.data(), static_cast<size_t>(json.size()));
            simdjson::dom::parser parser;
            measure(state, [&] { benchmark::DoNotOptimize(parser.parse(padded).error()); });
        });
        add("QJsonDocument" + suffix, [events](benchmark::State &state) {
            const QByteArray json = sampleEventsList(events);
            measure(state, [&] { benchmark::DoNotOptimize(QJsonDocument::fromJson(json)); });
        });
        for (const char *part : { "simdjson", "QJsonDocument", "decode", "map" })
            budgets.push_back({ .benchmark = part + suffix });
        for (const auto &[other, factor] :
             { std::pair { "QJsonDocument", 1.0 }, std::pair { "simdjson", 8.0 } }) {
            budgets.push_back(
                { .benchmark = "decode and map" + suffix, .comparedTo = other + suffix, .factor = factor });
        }
    }
}

void registerLinkDetection(std::vector<Budget> &budgets)
{
    for (const HostileText &hostile : hostileTexts()) {
        const std::string name = std::string("links: ") + hostile.name;
        add(name, [hostile](benchmark::State &state) {
            const QString text = hostile.make(megabyte);
            measure(state, [&] {
                benchmark::DoNotOptimize(MeetingLinkDetector().resolve({}, {}, text, QString()));
            });
        });
        budgets.push_back({ .benchmark = name, .milliseconds = linkBudget });
    }
}

void registerStore(std::vector<Budget> &budgets)
{
    using Work = void (*)(EventStore &, const QList<Meeting> &page);
    const auto addQuestion = [&](const std::string &name, double budget, Work work) {
        add(name, [work](benchmark::State &state) {
            const Instant start { std::chrono::hours(24 * 20'000) };
            const FixedClock clock(start + std::chrono::hours(12));
            EventStore store(clock);
            for (int account = 0; account < heldMeetings / pageEvents / 4; ++account)
                store.replace(QString::number(account),
                              sampleMeetings(QString::number(account), pageEvents * 4, start));
            const QList<Meeting> page = sampleMeetings(u"0"_s, pageEvents * 4, start);
            measure(state, [&] { work(store, page); });
        });
        budgets.push_back({ .benchmark = name, .milliseconds = budget });
    };
    addQuestion("store: replace an account's meetings", replaceBudget,
                [](EventStore &store, const QList<Meeting> &page) { store.replace(u"0"_s, page); });
    addQuestion("store: nextUp", queryBudget, [](EventStore &store, const QList<Meeting> &) {
        benchmark::DoNotOptimize(store.nextUp({}, 300));
    });
    addQuestion("store: ongoing", queryBudget,
                [](EventStore &store, const QList<Meeting> &) { benchmark::DoNotOptimize(store.ongoing()); });
    addQuestion("store: today", queryBudget,
                [](EventStore &store, const QList<Meeting> &) { benchmark::DoNotOptimize(store.today()); });
}

} // namespace

} // namespace kestrel

int main(int argc, char **argv)
{
    // What is compared takes turns, so that a machine that grows slow or quick meanwhile does so for both
    // sides. The command line's own options come later and win.
    std::vector<std::string> options { argv[0], "--benchmark_repetitions=5",
                                       "--benchmark_enable_random_interleaving=true",
                                       "--benchmark_min_time=0.1" };
    options.insert(options.end(), argv + 1, argv + argc);
    std::vector<char *> arguments;
    arguments.reserve(options.size());
    for (std::string &option : options)
        arguments.push_back(option.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;

    std::vector<kestrel::Budget> budgets;
    kestrel::registerDecoding(budgets);
    kestrel::registerLinkDetection(budgets);
    kestrel::registerStore(budgets);
    kestrel::BudgetTable table("ms CPU", budgets);
    return table.run();
}
