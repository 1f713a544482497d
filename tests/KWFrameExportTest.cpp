#include <apps/kwedit/KWEditExporter.h>
#include <apps/kwedit/KWEditScene.h>
#include <gtest/gtest.h>
#include <tests/EditTestSupport.h>

#include <QProcess>
#include <QSignalSpy>

namespace {

struct Said {
    int code;
    QString out;
    QString err;
};

Said kwedit(const QStringList& arguments) {
    QProcess process;
    // glibc never lets go of the path of its own that locales are looked up in.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("LOCPATH"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KWBASE_TEST_KWEDIT), arguments);
    EXPECT_TRUE(process.waitForFinished(120'000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

KWFrameJob ballJob(qint64 first, qint64 last, int threads) {
    return {std::make_shared<KWDocument>(
                KWDocument::open(samplePath("bouncing-ball.kwdoc").toStdString())),
            {},
            first,
            last,
            QSize(160, 90),
            0,
            threads};
}

} // namespace

TEST(KWFrameExport, FramesHaveFourDigitsAndTheirSign) {
    EXPECT_EQ(kwFrameFileName("ball", 7), "ball.0007.png");
    EXPECT_EQ(kwFrameFileName("ball", -12), "ball.-0012.png");
    EXPECT_EQ(kwFrameFileName("ball", 123456), "ball.123456.png");
}

TEST(KWFrameExport, AllThreadCountsWriteTheSameFrames) {
    Folder folder;
    KWExportWatch watch;
    quint64 last = 0;
    watch.progress = [&last](quint64 done, quint64 total) {
        EXPECT_EQ(done, last + 1);
        EXPECT_EQ(total, 6U);
        last = done;
    };
    EXPECT_TRUE(kwExportFrames(ballJob(-1, 4, 1), folder.path("one"), "b", false, watch));
    EXPECT_EQ(last, 6U);
    EXPECT_TRUE(kwExportFrames(ballJob(-1, 4, 3), folder.path("three"), "b", false, {}));
    const QStringList names = QDir(folder.path("one")).entryList(QDir::Files);
    EXPECT_EQ(names.size(), 6);
    for (const QString& name : names)
        EXPECT_EQ(contentsOf(folder.path("one/") + name), contentsOf(folder.path("three/") + name));
}

TEST(KWFrameExport, AFrameThatIsReadAgainIsTheScenesFrame) {
    Folder folder;
    const KWFrameJob job = ballJob(10, 10, 1);
    ASSERT_TRUE(kwExportFrames(job, folder.path(), "b", false, {}));
    const QImage read(folder.path("b.0010.png"));
    KWEditScene scene(*job.document, {});
    EXPECT_EQ(read.convertToFormat(QImage::Format_ARGB32_Premultiplied),
              scene.frame(KWTime(0.4F), job.size));
}

TEST(KWFrameExport, CancelLeavesWholeFramesOnlyAndNoMovie) {
    Folder folder;
    std::atomic<bool> isCanceled = false;
    KWExportWatch watch;
    watch.isCanceled = &isCanceled;
    watch.progress = [&](quint64 done, quint64) { isCanceled = done >= 3; };
    EXPECT_FALSE(kwExportFrames(ballJob(0, 99, 1), folder.path(), "b", false, watch));
    EXPECT_EQ(folder.names(), (QStringList{"b.0000.png", "b.0001.png", "b.0002.png"}));
    if (kwMovieProgram().isEmpty())
        return;
    isCanceled = false;
    EXPECT_FALSE(kwExportMovie(ballJob(0, 99, 2), folder.path("b.mp4"), watch));
    EXPECT_EQ(folder.names().size(), 3);
}

TEST(KWFrameExport, AMovieHasTheFrames) {
    if (kwMovieProgram().isEmpty())
        GTEST_SKIP() << "no ffmpeg";
    Folder folder;
    ASSERT_TRUE(kwExportMovie(ballJob(0, 9, 2), folder.path("b.mp4"), {}));
    EXPECT_EQ(folder.names(), QStringList{"b.mp4"});
    QProcess probe;
    probe.start("ffprobe",
                {"-v", "error", "-count_frames", "-show_entries",
                 "stream=nb_read_frames,width,height", "-of", "csv=p=0", folder.path("b.mp4")});
    ASSERT_TRUE(probe.waitForFinished());
    EXPECT_EQ(probe.readAllStandardOutput().trimmed(), "160,90,10");
}

TEST(KWFrameExport, ValuesAreWrittenAsCSVAndJSON) {
    Folder folder;
    const auto document = ballJob(0, 0, 1).document;
    const TimeSteps steps = TimeSteps::atRate(0, 1, 2);
    for (const char* name : {"v.csv", "v.json", "v.jsonl"})
        ASSERT_TRUE(kwExportValues(document->channels(), steps, folder.path(name), {}));
    EXPECT_TRUE(contentsOf(folder.path("v.csv"))
                    .startsWith("time,Ball/radius,Ball/Position/x,Ball/Position/y"));
    const QByteArray json = contentsOf(folder.path("v.json"));
    EXPECT_TRUE(json.startsWith("[\n{\"time\":0,\"values\":{\"Ball/radius\":0.11,"));
    EXPECT_TRUE(json.endsWith("}}\n]\n"));
    EXPECT_EQ(json.count("\"time\""), 3);
    EXPECT_EQ(contentsOf(folder.path("v.jsonl")).count('\n'), 3);
    std::atomic<bool> isCanceled = true;
    KWExportWatch watch;
    watch.isCanceled = &isCanceled;
    EXPECT_FALSE(kwExportValues(document->channels(), TimeSteps::atRate(0, 1000, 100),
                                folder.path("no.csv"), watch));
    EXPECT_EQ(folder.names().size(), 3);
}

TEST(KWEditExporter, ExportsInTheBackgroundWhatTheDocumentWas) {
    Folder folder;
    KWEditDocument document;
    document.setAutosaveFolder({});
    ASSERT_TRUE(document.open(samplePath("bouncing-ball.kwdoc")));
    KWEditExporter exporter;
    QSignalSpy finished(&exporter, &KWEditExporter::finished);
    QString error;
    ASSERT_TRUE(exporter.exportFrames(document, 0, 3, {160, 90}, folder.path("f"), &error));
    EXPECT_FALSE(exporter.exportFrames(document, 0, 3, {160, 90}, folder.path("g"), &error));
    EXPECT_EQ(error, "another export is under way");
    document.startNew();
    ASSERT_TRUE(finished.wait(60'000));
    EXPECT_TRUE(finished[0][0].toBool()) << finished[0][1].toString().toStdString();
    EXPECT_FALSE(exporter.isRunning());
    EXPECT_EQ(QDir(folder.path("f")).entryList(QDir::Files).first(), "bouncing-ball.0000.png");
}

TEST(KWEditProgram, RendersFramesWithoutAScreen) {
    Folder folder;
    const Said said = kwedit({"--render", samplePath("bouncing-ball.kwdoc"), "--frames", "0-2",
                              "-o", folder.path("f"), "--size", "160x90"});
    EXPECT_EQ(said.code, 0) << said.err.toStdString();
    EXPECT_EQ(said.out + said.err, "");
    EXPECT_EQ(QDir(folder.path("f")).entryList(QDir::Files).size(), 3);
}

TEST(KWEditProgram, EachErrorIsOneLineAndItsCode) {
    Folder folder;
    const QString ball = samplePath("bouncing-ball.kwdoc");
    writeContents(folder.path("bad"), "nothing");
    writeContents(folder.path("file"), "x");
    const auto expect = [&](int code, const QString& part, const QStringList& arguments) {
        const Said said = kwedit(arguments);
        EXPECT_EQ(said.code, code) << said.err.toStdString();
        EXPECT_TRUE(said.err.startsWith("kwedit: ")) << said.err.toStdString();
        EXPECT_EQ(said.err.count('\n'), 1) << said.err.toStdString();
        EXPECT_TRUE(said.err.contains(part)) << said.err.toStdString();
    };
    expect(3, "No such file", {"--render", folder.path("none"), "-o", folder.path("f")});
    expect(1, "bad", {"--render", folder.path("bad"), "-o", folder.path("f")});
    expect(2, "-o", {"--render", ball});
    expect(2, "no range", {"--render", ball, "--frames", "9-1", "-o", folder.path("f")});
    expect(2, "no size", {"--render", ball, "--size", "9", "-o", folder.path("f")});
    expect(2, "--fps", {"--render", ball, "--fps", "0", "-o", folder.path("f")});
    expect(2, "--jobs", {"--render", ball, "--jobs", "0", "-o", folder.path("f")});
    expect(2, "--sice", {"--render", ball, "--sice", "9", "-o", folder.path("f")});
    expect(3, "file", {"--render", ball, "--frames", "0", "-o", folder.path("file/f")});
    EXPECT_TRUE(kwedit({"--version"}).out.startsWith("kwedit "));
    EXPECT_TRUE(kwedit({"--help"}).out.contains("--render"));
}
