#include "dashboard/WindowChoice.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestWindowChoice : public QObject {
    Q_OBJECT

private slots:
    void init();
    void beginsWithAMinute();
    void aClickChooses();
    void settingEmitsNothing();
    void theKeysChoose();
    void aScreenReaderFindsTheChosenOne();

private:
    QList<QAbstractButton *> buttons() const { return m_choice->findChildren<QAbstractButton *>(); }

    std::unique_ptr<WindowChoice> m_choice;
    std::unique_ptr<QSignalSpy> m_chosen;
};

void TestWindowChoice::init()
{
    m_chosen.reset();
    m_choice = std::make_unique<WindowChoice>();
    m_chosen = std::make_unique<QSignalSpy>(m_choice.get(), &WindowChoice::chosenByUser);
    m_choice->show();
    QVERIFY(QTest::qWaitForWindowActive(m_choice.get()));
}

void TestWindowChoice::beginsWithAMinute()
{
    QVERIFY(m_choice->chosen() == HistoryWindow::oneMin);
    QStringList words;
    for (const QAbstractButton *button : buttons())
        words.append(button->text());
    QCOMPARE(words, (QStringList{u"1 min"_s, u"10 min"_s, u"1 hour"_s, u"1 day"_s}));
}

void TestWindowChoice::aClickChooses()
{
    QTest::mouseClick(buttons()[2], Qt::LeftButton);
    QVERIFY(m_choice->chosen() == HistoryWindow::oneHour);
    QCOMPARE(m_chosen->count(), 1);
    QVERIFY(m_chosen->front().front().value<HistoryWindow>() == HistoryWindow::oneHour);
}

void TestWindowChoice::settingEmitsNothing()
{
    for (const HistoryWindow window : allHistoryWindows) {
        m_choice->setChosen(window);
        QVERIFY(m_choice->chosen() == window);
    }
    m_choice->setChosen(static_cast<HistoryWindow>(7)); // None of them.
    QVERIFY(m_choice->chosen() == HistoryWindow::oneDay);
    QVERIFY(m_chosen->isEmpty());
}

void TestWindowChoice::theKeysChoose()
{
    QTest::keyClick(m_choice.get(), Qt::Key_Tab);
    QAbstractButton *first = buttons().front();
    QVERIFY(first->hasFocus());
    QTest::keyClick(first, Qt::Key_Right);
    QVERIFY(buttons()[1]->hasFocus());
    QTest::keyClick(buttons()[1], Qt::Key_Space);
    QVERIFY(m_choice->chosen() == HistoryWindow::tenMin);
    QVERIFY(!m_chosen->isEmpty());
    QVERIFY(m_chosen->back().front().value<HistoryWindow>() == HistoryWindow::tenMin);
}

void TestWindowChoice::aScreenReaderFindsTheChosenOne()
{
    m_choice->setChosen(HistoryWindow::oneDay);
    for (QAbstractButton *button : buttons()) {
        const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(button);
        QVERIFY(interface);
        QVERIFY(interface->role() == QAccessible::RadioButton);
        QCOMPARE(interface->text(QAccessible::Name), u"Charts of "_s + button->text());
        QCOMPARE(bool(interface->state().checked), button == buttons().back());
    }
}

QTEST_MAIN(TestWindowChoice)
#include "tst_WindowChoice.moc"
