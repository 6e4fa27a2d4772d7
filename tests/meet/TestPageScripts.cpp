#include "meet/MeetAction.h"
#include "meet/protocol/StateScript.h"
#include "support/Files.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// Runs every case in a document of its own, all at the same time, and leaves in the page what came of them.
/// The button named "tray" opens and closes; what its data-inside names is there `data-after` milliseconds
/// later.
const QString page = uR"html(<!doctype html><meta charset="utf-8"><body><script>
const outcomes = {};
for (const one of CASES) {
  const frame = document.createElement("iframe");
  frame.srcdoc = one.page;
  frame.onload = () => {
    const inner = frame.contentWindow, doc = frame.contentDocument, pressed = [];
    // time is virtual here, and no frames are drawn in it
    inner.requestAnimationFrame = (call) => inner.setTimeout(() => call(inner.performance.now()), 16);
    doc.addEventListener("click", (event) => {
      const tray = event.target;
      pressed.push(tray.id);
      if (tray.id !== "tray") return;
      const opens = tray.ariaExpanded !== "true";
      tray.ariaExpanded = String(opens);
      const late = doc.getElementById(tray.dataset.inside);
      if (opens && late) inner.setTimeout(() => doc.body.append(late.content), Number(tray.dataset.after));
    });
    const answer = inner.eval(one.script);
    outcomes[one.name] = { answer, pressed };
  };
  document.body.append(frame);
}
setTimeout(() => {
  const result = document.createElement("pre");
  result.id = "outcomes";
  result.textContent = btoa(String.fromCharCode(...new TextEncoder().encode(JSON.stringify(outcomes))));
  document.body.replaceChildren(result);
}, 5000);
</script>)html"_s;

struct Case
{
    const char *name;
    QString action; ///< label of the action; empty: the state script
    QString page;
    QString answer;
    QStringList pressed; ///< in order
};

QString state(bool mic, bool cam, bool hand, bool share, bool found)
{
    const auto text = [](bool value) { return value ? u"true"_s : u"false"_s; };
    return uR"({"mic":%1,"cam":%2,"hand":%3,"share":%4,"found":%5})"_s.arg(text(mic), text(cam), text(hand),
                                                                           text(share), text(found));
}

QString button(const QString &label, const QString &id = u"b"_s)
{
    return u"<button id='%1' aria-label='%2'></button>"_s.arg(id, label);
}

/// A tray of reactions whose inside appears some time after it was opened.
QString tray(const QString &inside, int after = 40, const QString &label = u"Send a reaction"_s)
{
    return u"<button id='tray' aria-expanded='false' data-inside='in' data-after='%1' "
           u"aria-label='%2'></button>"
           "<template id='in'>%3</template>"_s.arg(after)
               .arg(label, inside);
}

QList<Case> cases()
{
    const QString thumbs = u"react-thumbs"_s;
    const QStringList openPressClose { u"tray"_s, u"yes"_s, u"tray"_s };
    return {
        { "state: nothing",
          {},
          u"<p aria-label='turn on microphone'>"_s,
          state(true, true, false, false, false),
          {} },
        { "state: all off",
          {},
          button(u"Turn on microphone (Ctrl + D)"_s) + button(u"TURN ON CAMERA"_s) + button(u"Lower hand"_s)
              + button(u"Stop presenting"_s),
          state(false, false, true, true, true),
          {} },
        { "state: Spanish, all on",
          {},
          button(u"Desactivar micrófono"_s) + button(u"Desactivar cámara"_s) + button(u"Levantar la mano"_s)
              + button(u"Presentar ahora"_s),
          state(true, true, false, false, true),
          {} },
        { "state: Spanish, all off",
          {},
          button(u"Activar micrófono"_s) + button(u"Activar cámara"_s) + button(u"Bajar la mano"_s)
              + button(u"Detener presentación"_s),
          state(false, false, true, true, true),
          {} },
        { "state: only a hand", {}, button(u"Lower hand"_s), state(true, true, true, false, false), {} },
        { "state: only a camera, no button element",
          {},
          u"<div role=button aria-label='Turn on camera'></div>"_s,
          state(true, false, false, false, true),
          {} },
        { "state: stopping comes before starting",
          {},
          button(u"Share screen"_s) + button(u"Stop presenting"_s),
          state(true, true, false, true, false),
          {} },

        { "mute presses the first in the document",
          u"mute"_s,
          u"<div id=a role=button aria-label='Turn off microphone: Ann'></div>"_s
              + button(u"Turn off microphone"_s),
          u"ok:turn off microphone: ann"_s,
          { u"a"_s } },
        { "mute goes by keyword before place",
          u"mute"_s,
          button(u"Turn on microphone"_s, u"a"_s) + button(u"Turn off microphone"_s),
          u"ok:turn off microphone"_s,
          { u"b"_s } },
        { "mute without a button", u"mute"_s, button(u"Turn off camera"_s), u"miss"_s, {} },
        { "video in Spanish",
          u"video"_s,
          button(u"Desactivar cámara"_s),
          u"ok:desactivar cámara"_s,
          { u"b"_s } },
        { "leave in Spanish",
          u"leave"_s,
          button(u"Abandonar la llamada"_s),
          u"ok:abandonar la llamada"_s,
          { u"b"_s } },

        { "a reaction opens the tray, waits, presses and closes", thumbs,
          tray(button(u"👍"_s, u"yes"_s), 700), u"fired"_s, openPressClose },
        { "a Spanish tray, a tooltip", thumbs,
          tray(u"<button id=yes data-tooltip='Me gusta'></button>"_s, 40, u"Enviar una reacción"_s),
          u"fired"_s, openPressClose },
        { "an open tray is used and closed",
          thumbs,
          u"<button id=tray aria-expanded=true aria-label='Reactions'></button>"_s
              + button(u"Thumbs up"_s, u"yes"_s),
          u"fired"_s,
          { u"yes"_s, u"tray"_s } },
        { "no tray", thumbs, button(u"Thumbs up"_s), u"no-trigger"_s, {} },
        { "a reaction that never comes", thumbs, tray(button(u"👍"_s), 1700), u"fired"_s, { u"tray"_s } },
        { "thumbs up is never thumbs down", thumbs,
          tray(button(u"Thumbs down, unlike thumbs up"_s, u"a"_s) + button(u"Dislike"_s, u"b"_s)
               + u"<button id=c aria-label='like' data-tooltip='👎'></button>"_s
               + button(u"I like it"_s, u"yes"_s)),
          u"fired"_s, openPressClose },
        { "the exclusions count for the tray too",
          u"react-thumbsdown"_s,
          tray({}, 40, u"Bring up reactions"_s),
          u"no-trigger"_s,
          {} },
        { "a heart is not eyes of hearts", u"react-heart"_s,
          tray(button(u"smiling face with heart eyes"_s, u"a"_s) + button(u"\u2764\ufe0f"_s, u"yes"_s)),
          u"fired"_s, openPressClose },
        { "laughing is not crying", u"react-laugh"_s,
          tray(button(u"😂 cry of joy"_s, u"a"_s) + button(u"🤣"_s, u"yes"_s)), u"fired"_s, openPressClose },
        { "sad is not joy", u"react-sad"_s,
          tray(button(u"crying with joy"_s, u"a"_s) + button(u"Llorando"_s, u"yes"_s)), u"fired"_s,
          openPressClose },
    };
}

QString scriptOf(const QString &label)
{
    if (label.isEmpty())
        return stateScript.toString();
    return std::ranges::find(meetActions(), label, &MeetAction::label)->js;
}

} // namespace

/// The scripts as they run in a real browser.
class TestPageScripts final : public QObject
{
    Q_OBJECT

    QJsonObject m_outcomes;

private Q_SLOTS:
    void initTestCase()
    {
        QJsonArray all;
        for (const Case &one : cases())
            all.append(QJsonObject { { u"name"_s, QLatin1StringView(one.name) },
                                     { u"page"_s, one.page },
                                     { u"script"_s, scriptOf(one.action) } });
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"page.html"_s);
        QByteArray json = QJsonDocument(all).toJson(QJsonDocument::Compact);
        json.replace('<', "\\u003c");
        writeFile(file, page.toUtf8().replace("CASES", json));

        QProcess browser;
        browser.start(u"chromium"_s,
                      { u"--headless=new"_s, u"--no-sandbox"_s, u"--disable-background-networking"_s,
                        u"--no-first-run"_s, u"--disable-component-update"_s, u"--disable-sync"_s,
                        u"--disable-quic"_s, u"--user-data-dir="_s + folder.filePath(u"profile"_s),
                        u"--virtual-time-budget=10000"_s, u"--dump-dom"_s, u"file://"_s + file });
        QVERIFY2(browser.waitForFinished(), qPrintable(browser.errorString()));
        const QString dumped = QString::fromUtf8(browser.readAllStandardOutput());
        const QString outcomes = dumped.section(u"<pre id=\"outcomes\">"_s, 1).section(u"</pre>"_s, 0, 0);
        m_outcomes = QJsonDocument::fromJson(QByteArray::fromBase64(outcomes.toLatin1())).object();
        QVERIFY2(!m_outcomes.isEmpty(), browser.readAllStandardError());
    }

    void pagesAnswerAndArePressed_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QStringList>("pressed");
        for (const Case &one : cases())
            QTest::newRow(one.name) << one.answer << one.pressed;
    }

    void pagesAnswerAndArePressed()
    {
        QFETCH(QString, answer);
        QFETCH(QStringList, pressed);
        const QJsonObject outcome = m_outcomes.value(QLatin1StringView(QTest::currentDataTag())).toObject();
        QCOMPARE(outcome.value("answer"_L1).toString(), answer);
        QCOMPARE(outcome.value("pressed"_L1).toVariant().toStringList(), pressed);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestPageScripts)
#include "TestPageScripts.moc"
