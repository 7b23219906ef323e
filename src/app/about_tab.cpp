#include "about_tab.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

#include <QEvent>
#include <QTimer>
#include <QVBoxLayout>

namespace zevran::app {

using window::named;

namespace {

const char* const kAboutText[AboutTab::kLines] = {
    "Zevran Handset Workshop",
    "",
    "V1.11",
    "",
    "A workshop for the firmware image of a handset",
    "ring tones - text strings - pictures - S-records",
    "",
    "Design and code",
    "The Zevran team",
    "",
    "Built with C++20 and Qt 6",
    "",
    "Thanks to every tester",
    "who flashed a patch before us",
    "",
    "Dedicated to everyone",
    "who keeps an old phone alive",
    "",
    "zevran-cli does every job",
    "from the command line",
    "",
    "Exact to the byte",
    "",
    "Zevran Handset Workshop",
};

}  // namespace

AboutTab::AboutTab(QWidget* parent) : QWidget(parent)
{
    setObjectName("AboutTab");
    for (const char* line : kAboutText) m_credits << QString::fromUtf8(line);
    auto* description = named(new QLabel(this), "Label15", tr("A workshop for the firmware image of a handset"));
    auto* frame3 = named(new QGroupBox(this), "Frame3");
    homePageLink = named(new QLabel(frame3), "Label16", tr("Home page"));
    homePageLink->setCursor(Qt::PointingHandCursor);
    homePageLink->installEventFilter(this);
    auto* frameLayout = new QVBoxLayout(frame3);
    frameLayout->addWidget(homePageLink);
    creditsArea = named(new QWidget(this), "Picture1");
    creditsArea->setMinimumHeight(240);
    scrollOffset = named(new QLineEdit(this), "Text6", QStringLiteral("0"));
    scrollOffset->setVisible(false);
    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    Timer1->setInterval(50);
    connect(Timer1, &QTimer::timeout, this, &AboutTab::Timer1_Timer);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(description);
    layout->addWidget(creditsArea, 1);
    layout->addWidget(frame3);
}

void AboutTab::startScroller()
{
    stopScroller();
    scrollOffset->setText(QStringLiteral("0"));
    for (int i = 0; i < kLines; ++i) {
        auto* line = new QLabel(m_credits[i], creditsArea);
        line->setObjectName("Label1");
        line->adjustSize();
        line->show();
        Label1.push_back(line);
    }
    placeLines(0);
    Timer1->start();
}

void AboutTab::applyTexts(const window::TabHost& host)
{
    homePageLink->setText(host.text("HomePageLink"));
    for (int i = 0; i < kLines; ++i)
        if (kAboutText[i][0] != '\0') m_credits[i] = host.text("AboutLine" + std::to_string(i + 1));
}

void AboutTab::stopScroller()
{
    Timer1->stop();
    for (QLabel* line : Label1) delete line;
    Label1.clear();
}

void AboutTab::Timer1_Timer()
{
    int offset = scrollOffset->text().toInt() + 50;
    scrollOffset->setText(QString::number(offset));
    placeLines(offset);
    const int lastTop = creditsArea->height() * kTwipsPerPixel - offset + (kLines - 1) * 400;
    if (lastTop < -200) {
        scrollOffset->setText(QStringLiteral("0"));
        placeLines(0);
    }
}

void AboutTab::placeLines(int offsetTwips)
{
    const int heightTwips = creditsArea->height() * kTwipsPerPixel;
    for (std::size_t i = 0; i < Label1.size(); ++i) {
        const int topTwips = heightTwips - offsetTwips + static_cast<int>(i) * 400;
        Label1[i]->move((creditsArea->width() - Label1[i]->width()) / 2, topTwips / kTwipsPerPixel);
    }
}

bool AboutTab::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == homePageLink) {
        // The link lights up while the pointer is over it.
        if (event->type() == QEvent::Enter)
            homePageLink->setStyleSheet("color: palette(link); text-decoration: underline;");
        else if (event->type() == QEvent::Leave) homePageLink->setStyleSheet(QString());
        else if (event->type() == QEvent::MouseButtonRelease) emit homePageRequested();
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace zevran::app
