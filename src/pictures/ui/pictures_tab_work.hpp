// A long command of the picture tab at work: the pointer is busy, the tab's controls
// wait, and the window may not close, since pending events run between the frames or
// rows written. Shared by the tab's files.
#pragma once

#include "pictures_tab.hpp"

#include "window/tab_host.hpp"
#include "window/widget_helpers.hpp"

namespace zevran::pictures {

class PicturesTab::Work {
public:
    explicit Work(PicturesTab& tab) : m_tab(tab), m_keepOpen(*tab.m_host)
    {
        m_tab.m_working = true;
        for (QWidget* control : m_tab.workControls()) control->setEnabled(false);
    }
    ~Work()
    {
        for (QWidget* control : m_tab.workControls()) control->setEnabled(true);
        m_tab.m_working = false;
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

private:
    PicturesTab& m_tab;
    window::KeepWindowOpen m_keepOpen;
    window::BusyPointer m_busy;
};

}  // namespace zevran::pictures
