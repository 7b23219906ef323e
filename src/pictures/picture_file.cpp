#include "picture_file.hpp"

#include "image/file_io.hpp"

#include <algorithm>

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QImageReader>

namespace zevran::pictures {

namespace {

// True when the picture's colour table is the 16 colours of "16.dat" (blue, green,
// red, 0 each), entry for entry.
bool hasTableOf(const QImage& picture, const ColourTable& colours)
{
    if (picture.format() != QImage::Format_Indexed8) return false;
    const QList<QRgb> table = picture.colorTable();
    if (table.size() != 16) return false;
    for (int i = 0; i < 16; ++i) {
        const auto at = 4 * static_cast<std::size_t>(i);
        if (qBlue(table[i]) != colours[at] || qGreen(table[i]) != colours[at + 1] || qRed(table[i]) != colours[at + 2])
            return false;
    }
    return true;
}

}  // namespace

PictureGrid readPictureFile(const std::string& path, const ColourTable& colours)
{
    try {
        image::requireRegularFile(path);
    } catch (const image::FileError& error) {
        throw PictureFileError(error.failure());
    }
    const QString name = QFile::decodeName(QByteArray::fromStdString(path));
    QImageReader reader(name);
    reader.setAutoTransform(false);
    QImage read = reader.read();
    if (read.isNull()) {
        // The name's suffix chose the reader (asking every reader costs more than the
        // reading); a picture under another suffix is read by its content.
        QImageReader byContent(name);
        byContent.setDecideFormatFromContent(true);
        byContent.setAutoTransform(false);
        read = byContent.read();
        if (read.isNull())
            throw PictureFileError(image::Reason::PictureUnreadable, {path, byContent.errorString().toStdString()});
    }

    PictureGrid grid;
    grid.width = read.width();
    grid.height = read.height();
    const auto width = static_cast<std::size_t>(grid.width);
    grid.rgb.resize(3 * width * static_cast<std::size_t>(grid.height));
    // Non-premultiplied, so the colour of a transparent pixel stays as stored; 32-bit
    // pictures (the BMP reader's usual answer) are taken as they are, and
    // an indexed picture's colours are looked up in its own table.
    std::uint8_t* out = grid.rgb.data();
    auto put = [&out](QRgb colour) {
        out[0] = static_cast<std::uint8_t>(qRed(colour));
        out[1] = static_cast<std::uint8_t>(qGreen(colour));
        out[2] = static_cast<std::uint8_t>(qBlue(colour));
        out += 3;
    };
    if (read.format() == QImage::Format_Indexed8) {
        const QList<QRgb> table = read.colorTable();
        for (int y = 0; y < grid.height; ++y) {
            const uchar* line = read.constScanLine(y);
            for (int x = 0; x < grid.width; ++x) put(line[x] < table.size() ? table[line[x]] : qRgb(0, 0, 0));
        }
    } else {
        const bool asRead = read.format() == QImage::Format_RGB32 || read.format() == QImage::Format_ARGB32;
        const QImage pixels = asRead ? read : read.convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < grid.height; ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            for (int x = 0; x < grid.width; ++x) put(line[x]);
        }
    }
    if (hasTableOf(read, colours)) {
        grid.indices.resize(width * static_cast<std::size_t>(grid.height));
        std::uint8_t* index = grid.indices.data();
        for (int y = 0; y < grid.height; ++y) {
            const uchar* line = read.constScanLine(y);
            for (int x = 0; x < grid.width; ++x) *index++ = line[x];
        }
        // An index past the table (a broken file) gives no indices: the colours decide.
        if (std::any_of(grid.indices.begin(), grid.indices.end(), [](std::uint8_t i) { return i > 15; }))
            grid.indices.clear();
    }
    return grid;
}

}  // namespace zevran::pictures
