// The link to the companion picture editor and the companion's own work.
//
// - A poke round trip: the exercise editor's label pokes, the server (on a thread of its
//   own, as the companion is a process of its own) takes it and answers. The median of
//   1,000 single pokes, against a bare frame sent and answered over a local socket.
// - A notice's arrival: the server changes the status, the editor's label gets its notice.
//   The median of 1,000.
// - A 12-megapixel photo opened, cropped to 4:3 and saved as the exercise picture, against
//   a bare QImageReader decode of the same file and a QImageWriter encode of a picture of
//   the saved size.

#include "link/LinkClient.h"
#include "link/LinkWire.h"
#include "picturebench/PictureDocument.h"
#include "support/LinkServerThread.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <QImageWriter>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPainter>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

using namespace tarvex;

namespace {

constexpr int kSamples = 1000;

QTemporaryDir* folder = nullptr; // the sockets and files of the run

using Clock = std::chrono::steady_clock;

double MedianSeconds(std::vector<double>& samples) {
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2];
}

std::unique_ptr<testing::LinkServerThread> Companion() {
    return std::make_unique<testing::LinkServerThread>(
        "Picture Bench", "MDIForm1", QStringList{"TVXSaveFName", "TVXOpenFName"},
        QStringList{"StatFileName", "TVXLinkStatus"});
}

std::unique_ptr<LinkLabel> Linked(LinkChannels& channels, const char* item, LinkMode mode) {
    auto label = std::make_unique<LinkLabel>(channels);
    label->SetLinkTopic(QStringLiteral("Picture Bench|MDIForm1"));
    label->SetLinkItem(QLatin1String(item));
    label->SetLinkMode(mode);
    return label;
}

void BM_PokeRoundTrip(benchmark::State& s) {
    const auto companion = Companion();
    LinkChannels channels;
    const auto save = Linked(channels, "TVXSaveFName", LinkMode::Manual);
    save->SetCaption(folder->filePath("PICTURE/100000_2.JPG"));
    for (auto _ : s) {
        std::vector<double> samples;
        for (int i = 0; i < kSamples; ++i) {
            const auto start = Clock::now();
            save->LinkPoke();
            samples.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        }
        s.SetIterationTime(MedianSeconds(samples));
    }
}

// The floor: one frame out and one back over a bare local socket, the other end on a
// thread that echoes.
void BM_PokeRoundTripFloor(benchmark::State& s) {
    QThread thread;
    QObject context;
    context.moveToThread(&thread);
    thread.start();
    std::unique_ptr<QLocalServer> server;
    const QString path = folder->filePath("echo");
    QMetaObject::invokeMethod(
        &context,
        [&] {
            server = std::make_unique<QLocalServer>();
            server->listen(path);
            QObject::connect(server.get(), &QLocalServer::newConnection, &context, [&] {
                QLocalSocket* socket = server->nextPendingConnection();
                QObject::connect(socket, &QLocalSocket::readyRead, &context,
                                 [socket] { socket->write(socket->readAll()); });
            });
        },
        Qt::BlockingQueuedConnection);
    QLocalSocket client;
    client.connectToServer(path);
    client.waitForConnected(1000);
    const QByteArray frame =
        EncodeLinkFrame({{"op", "poke"}, {"id", 1}, {"item", "TVXSaveFName"}, {"value", path}});
    for (auto _ : s) {
        std::vector<double> samples;
        for (int i = 0; i < kSamples; ++i) {
            const auto start = Clock::now();
            client.write(frame);
            client.flush();
            qint64 got = 0;
            while (got < frame.size() && client.waitForReadyRead(1000))
                got += client.readAll().size();
            samples.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        }
        s.SetIterationTime(MedianSeconds(samples));
    }
    QMetaObject::invokeMethod(
        &context, [&] { server.reset(); }, Qt::BlockingQueuedConnection);
    thread.quit();
    thread.wait();
}

void BM_NoticeArrival(benchmark::State& s) {
    const auto companion = Companion();
    LinkChannels channels;
    const auto status = Linked(channels, "TVXLinkStatus", LinkMode::Notify);
    int notices = 0;
    QObject::connect(status.get(), &LinkLabel::LinkNotify, [&] { ++notices; });
    for (auto _ : s) {
        std::vector<double> samples;
        for (int i = 0; i < kSamples; ++i) {
            const int before = notices;
            const auto start = Clock::now();
            companion->SetValue("TVXLinkStatus", QString::number(i));
            const QDeadlineTimer deadline(2000);
            while (notices == before && !deadline.hasExpired())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
            samples.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        }
        s.SetIterationTime(MedianSeconds(samples));
    }
}

// A photo of 4000x3000 with detail enough to make the codec work.
QString TwelveMegapixelPhoto() {
    const QString path = folder->filePath("photo 12mp.jpg");
    if (QFile::exists(path))
        return path;
    QImage photo(4000, 3000, QImage::Format_RGB32);
    QPainter painter(&photo);
    QLinearGradient sky(0, 0, 0, 3000);
    sky.setColorAt(0, QColor(120, 170, 220));
    sky.setColorAt(1, QColor(230, 220, 200));
    painter.fillRect(photo.rect(), sky);
    for (int i = 0; i < 400; ++i) {
        painter.setPen(QPen(QColor::fromHsv((i * 37) % 360, 160, 200), 3 + i % 9));
        painter.drawLine((i * 97) % 4000, (i * 53) % 3000, (i * 211) % 4000, (i * 149) % 3000);
    }
    painter.end();
    photo.save(path, "JPEG", 92);
    return path;
}

void BM_OpenCropSave12MP(benchmark::State& s) {
    const QString photo = TwelveMegapixelPhoto();
    const QString target = folder->filePath("100000_1.JPG");
    for (auto _ : s) {
        PictureDocument document;
        document.Open(photo);
        document.Crop(QRect(QPoint(200, 100), QSize(1200, 900)));
        const QString error = document.Save(target);
        if (!error.isEmpty())
            s.SkipWithError(qPrintable(error));
    }
}

// The floor: the same file decoded whole by a bare reader, and a picture of the saved
// size encoded by a bare writer.
void BM_OpenCropSave12MPFloor(benchmark::State& s) {
    const QString photo = TwelveMegapixelPhoto();
    for (auto _ : s) {
        QImageReader reader(photo);
        const QImage image = reader.read();
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        QImageWriter writer(&out, "JPEG");
        writer.setQuality(90);
        writer.write(image.copy(0, 0, 900, 675));
        benchmark::DoNotOptimize(out.data().size());
    }
}

} // namespace

BENCHMARK(BM_PokeRoundTrip)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(BM_PokeRoundTripFloor)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(BM_NoticeArrival)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(3);
BENCHMARK(BM_OpenCropSave12MP)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_OpenCropSave12MPFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir dir;
    folder = &dir;
    qputenv("TARVEX_LINK_DIR", dir.path().toUtf8());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    folder = nullptr;
    return 0;
}
