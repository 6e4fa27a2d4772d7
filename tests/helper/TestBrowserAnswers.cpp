#include "helper/DevToolsAnswers.h"
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace kestrel;

namespace {

const auto somethingWrong = u"error: The browser reported an error"_s;

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
        QCOMPARE(described(ranInPage(QJsonDocument::fromJson(QTest::currentDataTag()).object())), ran);
    }

    void onlyPagesOfTheMeetHostAreTouched()
    {
        QStringList touched;
        for (const char *address :
             { "https://meet.google.com/abc", "http://meet.google.com/", "https://meet.google.com:8443/",
               "https://meet.google.com.example.org/", "https://example.org/?https://meet.google.com/",
               "data:text/html,https://meet.google.com/", "file:///https://meet.google.com/" }) {
            const DevToolsPage page { u"1"_s, QString::fromLatin1(address) };
            if (page.showsMeet(u"meet.google.com"_s))
                touched.append(page.address);
        }
        QCOMPARE(touched, QStringList { u"https://meet.google.com/abc"_s });
    }
};

QTEST_GUILESS_MAIN(TestBrowserAnswers)
#include "TestBrowserAnswers.moc"
