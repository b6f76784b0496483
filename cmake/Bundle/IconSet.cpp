// Draws an icon in every size that macOS wants of it: IconSet DRAWING.svg FOLDER.iconset

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

namespace {

bool draw(QSvgRenderer& drawing, int side, const QString& file) {
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    return picture.save(file);
}

bool drawAll(QSvgRenderer& drawing, const QDir& folder) {
    for (const int points : {16, 32, 128, 256, 512}) {
        const QString name = QString("icon_%1x%1").arg(points);
        if (!draw(drawing, points, folder.filePath(name + ".png"))) return false;
        if (!draw(drawing, 2 * points, folder.filePath(name + "@2x.png"))) return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    QSvgRenderer drawing;
    if (argc == 3 && drawing.load(QString(argv[1])) && QDir().mkpath(argv[2]) &&
        drawAll(drawing, QDir(argv[2])))
        return 0;
    std::fputs("IconSet: It takes a drawing it can read and a folder it can write.\n", stderr);
    return 1;
}
