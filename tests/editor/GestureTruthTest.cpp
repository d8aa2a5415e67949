#include "editor/PDFEditorView.h"
#include "export/PDFExporter.h"
#include "preview/ProcessRenderer.h"
#include "tests/editor/EditorTestSupport.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/LongRun.h"
#include "tests/support/TestPdf.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// A page of random size, crop, turn and unit with one red stamp on it, in a window of random size.
/// VELLMORA_GESTURES_SEED repeats a run.
class Scene {
public:
    Scene(quint32 seed, double smallestPage, double largestPage) : m_random(seed) {
        const Rect mediaBox{real(-500, 500), real(-500, 500), logarithmic(smallestPage, largestPage),
                            logarithmic(smallestPage, largestPage)};
        m_cropBox = mediaBox;
        if (chance(2)) {
            m_cropBox.width *= real(0.1, 1);
            m_cropBox.height *= real(0.1, 1);
            m_cropBox.x += real(0, mediaBox.width - m_cropBox.width);
            m_cropBox.y += real(0, mediaBox.height - m_cropBox.height);
        }
        m_turn = 90 * int(m_random.bounded(4));
        PdfBuilder source;
        source.page("/MediaBox " + array(mediaBox) +
                    (m_cropBox == mediaBox ? "" : " /CropBox " + array(m_cropBox)) + " /Rotate " +
                    std::to_string(m_turn) +
                    (chance(3) ? " /UserUnit " + std::to_string(logarithmic(0.1, 75)) : ""));
        pdfDocument = source.document();
        host.reset(bridge.makeView(renderer, nullptr));
        host->resize(int(real(150, 1200)), int(real(150, 1000)));
        host->show();
        const Rect shown = shownBox();
        const double aspect = logarithmic(0.1, 20);
        const double width = std::min({shown.width, 0.28 * mediaBox.width, 190.0});
        const Rect rect{shown.midX() - width / 2, shown.midY() - width / aspect / 2, width, width / aspect};
        m_id = place(rect, aspect);
        refresh();
    }

    void refresh() {
        settle();
        bridge.updateView(*host);
    }

    double real(double low, double high) { return low + m_random.generateDouble() * (high - low); }
    double logarithmic(double low, double high) { return std::exp(real(std::log(low), std::log(high))); }
    bool chance(int oneIn) { return m_random.bounded(oneIn) == 0; }

    StampItem stamp() const { return stampsByPage.value().value(0).first(); }
    InteractiveStampView& view() const { return *host->stampView(m_id); }
    PageGeometry page() const { return *host->pdfView().geometryOfPage(); }
    Rect shownBox() const { return pdfDocument.value()->page(0)->bounds(DisplayBox::cropBox); }
    const Rect& cropBox() const { return m_cropBox; }
    int turn() const { return m_turn; }
    Rect overlay() const { return {0, 0, double(host->width()), double(host->height())}; }

    QProperty<std::shared_ptr<const PDFDocument>> pdfDocument;
    QProperty<StampsByPage> stampsByPage;
    QProperty<qsizetype> currentPageIndex{0};
    QProperty<std::optional<QUuid>> selectedStampID;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFEditorView bridge{pdfDocument, stampsByPage, currentPageIndex, selectedStampID};
    std::unique_ptr<EditorHostView> host;

private:
    static std::string array(const Rect& box) {
        std::array<char, 200> text{};
        std::snprintf(text.data(), text.size(), "[%f %f %f %f]", box.minX(), box.minY(), box.maxX(),
                      box.maxY());
        return text.data();
    }
    QUuid place(const Rect& rect, double aspect) {
        StampItem item = stampAt(rect);
        item.aspectRatio = aspect;
        stampsByPage = StampsByPage{{0, {item}}};
        return item.id;
    }

    QRandomGenerator m_random;
    Rect m_cropBox;
    int m_turn = 0;
    QUuid m_id;
};

/// Works on the scene's stamp with mouse and keys, and says what must hold of it.
class Hand {
public:
    explicit Hand(Scene& scene) : m_scene(scene) {}

    void anything() {
        switch (int(m_scene.real(0, 6))) {
            case 0:
                return zoom();
            case 1:
                m_scene.host->pdfView().setScrollOffset({m_scene.real(-900, 900), m_scene.real(-900, 900)});
                return;
            case 2:
                return holdKey();
            default:
                return gesture();
        }
    }

private:
    void zoom() {
        m_scene.host->pdfView().setScaleFactor(m_scene.logarithmic(0.1, 10));
        if (m_scene.chance(4))
            m_scene.host->pdfView().setAutoScales(true);
    }

    /// A press on any part of the stamp in sight, some steps or none, and the release.
    void gesture() {
        InteractiveStampView& view = m_scene.view();
        const Rect inSight = intersection(view.frame(), m_scene.overlay());
        if (inSight.isEmpty())
            return;
        const Point from{m_scene.real(inSight.minX(), inSight.maxX()),
                         m_scene.real(inSight.minY(), inSight.maxY())};
        const StampItem before = m_scene.stamp();
        const Rect placeBefore = view.place();
        send(QEvent::MouseButtonPress, from);
        Point to = from;
        for (int steps = m_scene.chance(3) ? 0 : 3; steps > 0; --steps) {
            const double reach = m_scene.logarithmic(1, 2000);
            to = {from.x + m_scene.real(-reach, reach), from.y + m_scene.real(-reach, reach)};
            send(QEvent::MouseMove, to);
            if (m_scene.chance(2))
                m_scene.refresh();
        }
        send(QEvent::MouseButtonRelease, to);
        m_scene.refresh();
        check(before, placeBefore, {to.x - from.x, to.y - from.y});
    }

    void holdKey() {
        const StampItem before = m_scene.stamp();
        const auto arrow = static_cast<Qt::Key>(Qt::Key_Left + int(m_scene.real(0, 4)));
        const bool isResize = m_scene.chance(2);
        for (int times = int(m_scene.real(1, 30)); times > 0; --times)
            QTest::keyClick(&m_scene.view(), arrow, isResize ? Qt::ControlModifier : Qt::NoModifier);
        m_scene.refresh();
        const StampItem after = m_scene.stamp();
        EXPECT_EQ(m_scene.view().place(), m_scene.page().toView(after.rect));
        isResize ? checkResized(before, after) : checkSize(before.rect, after.rect);
        checkGrip(after.rect);
    }

    void send(QEvent::Type type, Point point) {
        const QWidget& overlay = m_scene.host->overlayContainer();
        const QPointF global = overlay.mapToGlobal(QPointF(point.x, overlay.height() - point.y));
        sendMouse(m_scene.view(), type, m_scene.view().mapFromGlobal(global));
    }

    void check(const StampItem& before, const Rect& placeBefore, Point mouse) {
        const StampItem after = m_scene.stamp();
        EXPECT_EQ(m_scene.view().place(), m_scene.page().toView(after.rect))
            << "what is seen is what is stored";
        EXPECT_EQ(m_scene.view().stamp(), after);
        if (mouse == Point{}) {
            EXPECT_EQ(after, before) << "a click";
        } else if (m_scene.view().drag().mode == InteractiveStampView::DragMode::move) {
            checkMove(before.rect, after.rect, placeBefore, mouse);
        } else {
            checkResize(before, after, placeBefore, mouse);
        }
        checkGrip(after.rect);
    }

    void checkMove(const Rect& before, const Rect& after, const Rect& place, Point mouse) {
        checkSize(before, after);
        const Size point = m_scene.page().pointSize();
        const Point moved{(after.x - before.x) * point.width, (after.y - before.y) * point.height};
        const Rect page = m_scene.page().frame();
        const double grip = 16 * std::max(1.0, std::max(point.width, point.height));
        checkWay(moved.x, mouse.x, place.x, place.width, m_scene.overlay().width, page.minX(), page.maxX(),
                 grip);
        checkWay(moved.y, mouse.y, place.y, place.height, m_scene.overlay().height, page.minY(), page.maxY(),
                 grip);
    }

    /// By exactly what the mouse moved, where that leads to a place in sight and on the page; else in the
    /// same direction and less far.
    void checkWay(double moved, double mouse, double start, double length, double seen, double pageStart,
                  double pageEnd, double grip) {
        const double wanted = start + mouse;
        const bool isInSight = wanted >= 0 && wanted + length <= seen;
        const double kept = std::min({grip, length, pageEnd - pageStart});
        const bool isOnPage = wanted + length >= pageStart + kept && wanted <= pageEnd - kept;
        if (isInSight && isOnPage) {
            EXPECT_NEAR(moved, mouse, 1e-6);
        }
        EXPECT_GE(moved * mouse, -1e-6);
        EXPECT_LE(std::abs(moved), std::abs(mouse) + 1e-6);
    }

    void checkResize(const StampItem& before, const StampItem& after, const Rect& place, Point mouse) {
        checkResized(before, after);
        const double width = m_scene.view().place().width;
        const double wanted = place.width + mouse.x;
        EXPECT_LE(width, std::max({wanted, place.width, 28.0}) + 1e-6)
            << "no further than the mouse leads it";
        EXPECT_GE(width, std::min(wanted, place.width) - 1e-6);
        if (mouse.x == 0) {
            EXPECT_EQ(after, before);
        }
    }

    static void checkSize(const Rect& before, const Rect& after) {
        EXPECT_EQ(after.width, before.width);
        EXPECT_EQ(after.height, before.height);
    }
    static void checkResized(const StampItem& before, const StampItem& after) {
        EXPECT_EQ(after.rect.x, before.rect.x);
        EXPECT_EQ(after.rect.y, before.rect.y);
        EXPECT_DOUBLE_EQ(after.rect.width / after.rect.height, after.aspectRatio);
    }

    void checkGrip(const Rect& rect) {
        const Rect shown = m_scene.shownBox();
        const Rect grip = intersection(rect, shown);
        EXPECT_GE(grip.width, std::min({16.0, rect.width, shown.width}) - 1e-6);
        EXPECT_GE(grip.height, std::min({16.0, rect.height, shown.height}) - 1e-6);
    }

    Scene& m_scene;
};

/// Where a rectangle of the file's own space lies on a page that is shown upright: shares of the width and
/// the height of what is shown, from its lower left corner.
Rect uprightShare(const Rect& rect, const Rect& cropBox, int turn) {
    const double left = (rect.minX() - cropBox.x) / cropBox.width;
    const double right = (rect.maxX() - cropBox.x) / cropBox.width;
    const double low = (rect.minY() - cropBox.y) / cropBox.height;
    const double high = (rect.maxY() - cropBox.y) / cropBox.height;
    switch (turn) {
        case 90:
            return rectFromCorners({low, 1 - right}, {high, 1 - left});
        case 180:
            return rectFromCorners({1 - right, 1 - high}, {1 - left, 1 - low});
        case 270:
            return rectFromCorners({1 - high, left}, {1 - low, right});
        default:
            return rectFromCorners({left, low}, {right, high});
    }
}

/// The last matrix of a page's content, which places the stamp, applied to the unit square.
Rect stampInFile(const std::string& content) {
    const size_t end = content.rfind(" cm");
    const size_t start = content.find_last_of("\nq", end);
    std::array<double, 6> m{};
    EXPECT_EQ(std::sscanf(content.substr(start + 1).c_str(), "%lf %lf %lf %lf %lf %lf", &m[0], &m[1], &m[2],
                          &m[3], &m[4], &m[5]),
              6)
        << content;
    return mapRect(Matrix{m[0], m[1], m[2], m[3], m[4], m[5]}, {0, 0, 1, 1});
}

QByteArray saved(const Scene& scene, const QTemporaryDir& folder) {
    const QString path = folder.filePath(QStringLiteral("saved.pdf"));
    PDFExporter::save(*scene.pdfDocument.value(), scene.stampsByPage.value(), QUrl::fromLocalFile(path));
    return readFile(path);
}

quint32 firstSeed() {
    const int given = qEnvironmentVariableIntValue("VELLMORA_GESTURES_SEED");
    return given ? quint32(given) : 1;
}

}  // namespace

TEST(GestureTruthTest, WhatTheHandDoesIsWhatIsStoredAndSaved) {
    const QTemporaryDir folder;
    for (quint32 seed = firstSeed(); seed < firstSeed() + (isLongRun() ? 5000 : 150); ++seed) {
        SCOPED_TRACE("VELLMORA_GESTURES_SEED=" + std::to_string(seed));
        Scene scene(seed, 3, 14400);
        Hand hand(scene);
        for (int i = 0; i < 15 && !testing::Test::HasFailure(); ++i)
            hand.anything();
        const Rect inFile = stampInFile(Output(saved(scene, folder)).pageContent());
        const Rect share = uprightShare(inFile, scene.cropBox(), scene.turn());
        const Rect page = scene.page().frame();
        const Rect seen = scene.view().place();
        const Size point = scene.page().pointSize();
        EXPECT_NEAR(page.x + share.x * page.width, seen.x, 0.01 * point.width);
        EXPECT_NEAR(page.y + share.y * page.height, seen.y, 0.01 * point.height);
        EXPECT_NEAR(share.width * page.width, seen.width, 0.01 * point.width);
        EXPECT_NEAR(share.height * page.height, seen.height, 0.01 * point.height);
        if (testing::Test::HasFailure())
            return;
    }
}

namespace {

/// What is red of a picture, a solid stamp, within `part`. Border and handle are nearly white, so a little
/// red counts.
QRect redArea(const QImage& image, const QRect& part) {
    QRect area;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.red() - color.green() > 12)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

/// The saved page as another program renders it, with this many pixels for each point. Empty where it fails.
QImage poppler(const QString& program, const QTemporaryDir& folder, double pixelsPerPoint) {
    const QString target = folder.filePath(QStringLiteral("page"));
    QProcess::execute(program,
                      {QStringLiteral("-q"), QStringLiteral("-cropbox"), QStringLiteral("-singlefile"),
                       QStringLiteral("-r"), QString::number(72 * pixelsPerPoint, 'f', 6),
                       folder.filePath(QStringLiteral("saved.pdf")), target});
    return QImage(target + QStringLiteral(".ppm"));
}

/// The red part of what is in sight, in points from the upper left corner of what is shown of the page.
QRectF redPoints(const QImage& image, const QRectF& inSight, QPointF corner, Size pixels) {
    const QRectF part(corner.x() + inSight.x() * pixels.width, corner.y() + inSight.y() * pixels.height,
                      inSight.width() * pixels.width, inSight.height() * pixels.height);
    const QRectF red = redArea(image, part.toRect().intersected(image.rect()));
    return {(red.x() - corner.x()) / pixels.width, (red.y() - corner.y()) / pixels.height,
            red.width() / pixels.width, red.height() / pixels.height};
}

}  // namespace

TEST(GestureTruthTest, AnotherProgramShowsTheSavedStampWhereTheScreenDoes) {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
    if (program.isEmpty())
        GTEST_SKIP() << "poppler is not installed";
    const QTemporaryDir folder;
    for (quint32 seed = firstSeed(); seed < firstSeed() + (isLongRun() ? 500 : 20); ++seed) {
        SCOPED_TRACE("VELLMORA_GESTURES_SEED=" + std::to_string(seed));
        Scene scene(seed, 50, 1500);
        Hand hand(scene);
        for (int i = 0; i < 6; ++i)
            hand.anything();
        scene.selectedStampID = std::nullopt;
        scene.refresh();
        saved(scene, folder);
        const Rect shown = scene.shownBox();
        const double sharpness = std::min(6.0, 2500 / std::max(shown.width, shown.height));
        const QImage page = poppler(program, folder, sharpness);
        ASSERT_FALSE(page.isNull());
        ASSERT_NEAR(page.width(), shown.width * sharpness, 1.5);
        const QImage screen = scene.host->grab().toImage();
        const Size point = scene.page().pointSize();
        const QRectF frame = toQt(scene.page().frame(), screen.height());
        const QRectF visible = frame.intersected(screen.rect());
        const QRectF inSight((visible.x() - frame.x()) / point.width,
                             (visible.y() - frame.y()) / point.height, visible.width() / point.width,
                             visible.height() / point.height);
        const QRectF seen = redPoints(screen, inSight, frame.topLeft(), point);
        const QRectF inFile = redPoints(page, inSight, {}, {sharpness, sharpness});
        const Rect place = scene.view().place();
        const double shorterSide = std::min(place.width, place.height);
        if (shorterSide >= 2) {  // less than a pixel of it can be too pale
            ASSERT_EQ(seen.isEmpty(), inFile.isEmpty());
        }
        if (seen.isEmpty() || shorterSide < 32)
            continue;  // of a small one too much lies beneath border and handle
        // Half a point, or where the screen shows less, a pixel of it; and one to which the other program
        // rounds.
        const double across = std::max(0.5, 1 / point.width) + 1 / sharpness;
        const double down = std::max(0.5, 1 / point.height) + 1 / sharpness;
        EXPECT_NEAR(seen.left(), inFile.left(), across);
        EXPECT_NEAR(seen.right(), inFile.right(), across);
        EXPECT_NEAR(seen.top(), inFile.top(), down);
        EXPECT_NEAR(seen.bottom(), inFile.bottom(), down);
        if (testing::Test::HasFailure())
            return;
    }
}
