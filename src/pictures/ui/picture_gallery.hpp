// The picture gallery: the picture scan run on a worker thread with a progress bar and
// Stop, and its candidates shown as thumbnails drawn as the preview draws them. A
// double-click opens the finder on one; the chosen ones become picture-list rows.
#pragma once

#include "pictures/picture_finder.hpp"
#include "pictures/picture_scan.hpp"
#include "pictures/picture_view.hpp"

#include <QAbstractListModel>
#include <QDialog>
#include <QImage>

#include <functional>
#include <memory>
#include <string_view>
#include <thread>

class QLabel;
class QListView;
class QProgressBar;
class QPushButton;
class QTimer;

namespace zevran::window {
class TabHost;
}

namespace zevran::pictures {

// The candidates of a scan, each with the name it would be listed under (editable)
// and its thumbnail, drawn when first shown.
class CandidateModel : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr int kThumbnailSize = 96;  // the longer side, in screen pixels

    CandidateModel(window::TabHost& host, QObject* parent = nullptr);
    void setCandidates(std::vector<PictureCandidate> candidates, std::vector<std::string> names);
    const PictureCandidate& candidate(int row) const { return m_candidates[static_cast<std::size_t>(row)]; }
    QString name(int row) const { return QString::fromStdString(m_names[static_cast<std::size_t>(row)]); }
    // The candidate drawn whole, exactly as the preview draws a picture of its place, size and depth.
    QImage picture(int row) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    // A new name; refused when empty or holding a space, as a table line could not carry it.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    window::TabHost& m_host;
    std::vector<PictureCandidate> m_candidates;
    std::vector<std::string> m_names;
    mutable std::vector<QImage> m_thumbnails;  // null until drawn
};

class PictureGallery : public QDialog {
    Q_OBJECT
public:
    PictureGallery(window::TabHost& host, QWidget* parent = nullptr);
    ~PictureGallery() override;

    // Scans the whole image as it is now; `rows` (the picture list) mark the known
    // candidates and keep their names from being given again.
    void startScan(std::vector<PictureEntry> rows);
    void stopScan();
    bool scanning() const { return m_job != nullptr; }
    // Hands every selected candidate to the list under its name, in address order.
    void addSelected();
    void retranslate();

    QProgressBar* progress;
    QPushButton* stopButton;
    QListView* list;
    QPushButton* addButton;
    QLabel* statusLine;
    CandidateModel* model;

signals:
    void openInFinder(const zevran::pictures::FoundPicture& picture);
    void addToTableRequested(const zevran::pictures::FoundPicture& picture, const QString& name);
    // The scan ended, finished or stopped, and its candidates are on show.
    void scanEnded();

private:
    struct Job;
    QString text(std::string_view key) const;
    void copyImageSlice();
    void poll();
    void finishScan();

    window::TabHost& m_host;
    QTimer* m_poll;
    std::shared_ptr<Job> m_job;
    std::thread m_worker;
    std::vector<PictureEntry> m_rows;
};

}  // namespace zevran::pictures
