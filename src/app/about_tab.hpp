// The about tab: a description, the home-page link and the scrolling credits.
#pragma once

#include <QStringList>
#include <QWidget>
#include <vector>

class QLabel;
class QLineEdit;
class QTimer;

namespace zevran::window {
class TabHost;
}

namespace zevran::app {

class AboutTab : public QWidget {
    Q_OBJECT
public:
    explicit AboutTab(QWidget* parent = nullptr);

    static constexpr int kLines = 24;
    static constexpr int kTwipsPerPixel = 15;

    // Entering the tab creates the lines below the scroll area and starts Timer1;
    // leaving it stops the timer and removes the lines.
    void startScroller();
    void stopScroller();
    void Timer1_Timer();  // one step: up by 50 twips, lines 400 twips apart
    // The home-page link and the credits in the current language: line N from the key
    // "AboutLineN" of [Zevran]; the blank lines between the credits stay blank.
    void applyTexts(const window::TabHost& host);

    QLabel* homePageLink;     // home-page link
    QWidget* creditsArea;     // scroll area
    QLineEdit* scrollOffset;  // scroll offset, in twips
    QTimer* Timer1;
    std::vector<QLabel*> Label1;  // the scrolling lines 1..24 while shown

signals:
    void homePageRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void placeLines(int offsetTwips);

    QStringList m_credits;
};

}  // namespace zevran::app
