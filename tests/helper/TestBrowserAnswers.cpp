#include "helper/DevToolsAnswers.h"
#include "helper/ExtensionAnswers.h"
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

const auto somethingWrong = u"error: The browser reported an error"_s;
const auto notKnown = u"error: The browser's extension answered in a way that is not known here"_s;

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

QString described(const BrowserRoute::RunAnswer &ran)
{
    if (!ran)
        return u"error: "_s + ran.error();
    return ran->isGone ? u"gone"_s : ran->result ? u"result: "_s + *ran->result : u"none"_s;
}

} // namespace

class TestBrowserAnswers final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void scriptsOverDevTools_data()
    {
        QTest::addColumn<QString>("ran");
        const auto row = [](const char *json, const QString &ran) { QTest::newRow(json) << ran; };
        row(R"({"result": {"value": {"result": ""}}})", u"result: "_s);
        row(R"({"result": {"value": {"result": null}}})", u"none"_s);
        row(R"({"result": {"value": {"gone": true, "result": "x"}}})", u"gone"_s);
        row(R"({"result": {"value": {"error": "TypeError: x"}}})", u"error: TypeError: x"_s);
        row(R"({"result": {"value": {"error": ""}}})", somethingWrong);
        row(R"({"exceptionDetails": {"exception": {"description": "SyntaxError: x\n    at y"}}})",
            u"error: SyntaxError: x"_s);
        row(R"({"exceptionDetails": {"exception": {"description": "\nx"}}})", u"error: x"_s);
        row(R"({"exceptionDetails": {"exception": {"description": "\n"}}})", somethingWrong);
        row(R"({"exceptionDetails": {}})", u"error: script timed out"_s);
    }
    void scriptsOverDevTools()
    {
        QFETCH(const QString, ran);
        QCOMPARE(described(ranInPage(parsed(QTest::currentDataTag()))), ran);
    }

    void failuresOverDevToolsHaveAText()
    {
        for (const char *json : { R"({"error": {"message": ""}})", R"({"error": {"message": 5}})" }) {
            const auto result = devToolsResult(parsed(json));
            QVERIFY(!result);
            QCOMPARE(u"error: "_s + result.error().text, somethingWrong);
        }
    }

    void tabsOfTheExtension_data()
    {
        QTest::addColumn<QString>("found");
        const auto row = [](const char *json, const QString &found) { QTest::newRow(json) << found; };
        row(R"({"tab": 12})", u"12"_s);
        row(R"({"tab": null})", u"none"_s);
        row(R"({"tab": 12.5})", notKnown);
        row(R"({"tab": 1e300})", notKnown);
        row(R"({"tab": "12"})", notKnown);
        row("{}", notKnown);
        row(R"({"error": ""})", somethingWrong);
        row(R"({"error": null, "tab": 12})", somethingWrong);
    }
    void tabsOfTheExtension()
    {
        QFETCH(const QString, found);
        const auto answer = foundByExtension(parsed(QTest::currentDataTag()));
        QCOMPARE(answer ? answer->value_or(u"none"_s) : u"error: "_s + answer.error(), found);
    }
};

QTEST_GUILESS_MAIN(TestBrowserAnswers)
#include "TestBrowserAnswers.moc"
