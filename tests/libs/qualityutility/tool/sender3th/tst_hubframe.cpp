#include "support/logcapture.h"
#include <qualityutility/tool/sender3th/hubframe_p.h>

#include <QTest>

namespace {

/// A device that hands out what was fed and no more.
class Wire : public QIODevice
{
public:
    Wire() { open(QIODevice::ReadOnly | QIODevice::Unbuffered); }
    void feed(const QByteArray& bytes) { m_bytes += bytes; }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return m_bytes.size() + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char* data, qint64 size) override
    {
        const int count = static_cast<int>(qMin<qint64>(size, m_bytes.size()));
        std::copy_n(m_bytes.constData(), count, data);
        m_bytes.remove(0, count);
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
};

/// What is queued when the parts arrive one by one.
QList<QByteArray> received(const QList<QByteArray>& parts)
{
    Wire wire;
    HubFrame::Receiver receiver;
    QList<QByteArray> complete;
    for (const QByteArray& part : parts) {
        wire.feed(part);
        receiver.receive(wire, [&](const QByteArray& payload) { complete << payload; });
    }
    return complete;
}

const QByteArray first = "{\"error\":0}";
const QByteArray second = "{\"error\":3}";

} // namespace

class HubFrameTest : public QObject
{
    Q_OBJECT

private:
    QScopedPointer<LogCapture> m_log; // keeps the many lines of receiving off the terminal

private Q_SLOTS:
    void init() { m_log.reset(new LogCapture); }
    void cleanup() { m_log.reset(); }

    void framesBeginWithTheirLength()
    {
        QCOMPARE(HubFrame::pack("abc"), QByteArray("\x03\0\0\0abc", 7));
        QCOMPARE(HubFrame::pack({}), QByteArray(4, '\0'));
        QCOMPARE(HubFrame::pack(QByteArray(0x010203, 'x')).left(4), QByteArray("\x03\x02\x01\0", 4));
        QCOMPARE(HubFrame::payloadLength(QByteArray("\x03\x02\x01\0", 4)), 0x010203);
        QCOMPARE(HubFrame::payloadLength("abc"), 0);
        QCOMPARE(HubFrame::payloadLength("abcde"), 0);
        QCOMPARE(HubFrame::payloadLength("\xff\xff\xff\xff"), 0);
    }

    void everySplitOfTwoFrames_data()
    {
        QTest::addColumn<int>("split");
        QTest::addColumn<QList<QByteArray>>("queued");
        const int firstFrame = HubFrame::headerLength + first.size();
        const int all = firstFrame + HubFrame::headerLength + second.size();
        for (int split = 0; split <= all; ++split) {
            // A part of the second frame that comes with the end of the first body spoils it; only a split right
            // between them, or inside the first header, whose rest is then read with both bodies, decides.
            QList<QByteArray> queued;
            if (split == firstFrame)
                queued << first << second;
            QTest::newRow(qPrintable(QString::number(split))) << split << queued;
        }
    }

    void everySplitOfTwoFrames()
    {
        QFETCH(int, split);
        const QByteArray both = HubFrame::pack(first) + HubFrame::pack(second);
        QTEST(received({both.left(split), both.mid(split)}), "queued");
    }

    void everySplitOfOneFrame()
    {
        const QByteArray frame = HubFrame::pack(first);
        for (int a = 0; a <= frame.size(); ++a) {
            for (int b = a; b <= frame.size(); ++b)
                QCOMPARE(received({frame.left(a), frame.mid(a, b - a), frame.mid(b)}), QList<QByteArray>{first});
        }
        QList<QByteArray> bytes;
        for (const char byte : frame + HubFrame::pack(second))
            bytes << QByteArray(1, byte);
        QCOMPARE(received(bytes), QList<QByteArray>({first, second}));
    }

    void oddFrames_data()
    {
        QTest::addColumn<QList<QByteArray>>("parts");
        QTest::addColumn<QList<QByteArray>>("queued");
        const QByteArray zero(4, '\0');
        const QByteArray good = HubFrame::pack(first);
        using Parts = QList<QByteArray>;
        QTest::newRow("zero frame, then a good one") << Parts{zero, good} << Parts{first};
        // The rest waits for the next arrival: the zero frame ends this one's reading.
        QTest::newRow("zero frame and a good one together") << Parts{zero + good} << Parts{};
        QTest::newRow("and the next arrival") << Parts{zero + good.left(7), good.mid(7)} << Parts{first};
        QTest::newRow("negative length") << Parts{"\xff\xff\xff\xff", good} << Parts{first};
        QTest::newRow("huge length") << Parts{QByteArray("\xff\xff\xff\x7f", 4), good} << Parts{};
        QTest::newRow("two bytes a character")
            << Parts{HubFrame::pack("\xc3\xa4"), "x"} << Parts{"\xc3\xa4x"}; // characters are counted
        QTest::newRow("zero byte in the body") << Parts{HubFrame::pack(QByteArray("a\0b", 3)), "cd"} << Parts{"acd"};
    }

    void oddFrames()
    {
        QFETCH(QList<QByteArray>, parts);
        QTEST(received(parts), "queued");
    }

    void aPeerThatStreamsIsNotKept_data()
    {
        QTest::addColumn<QByteArray>("begin");
        QTest::addColumn<QByteArray>("stream");
        const QByteArray megabyte(1024 * 1024, 'x');
        QTest::newRow("more than any reply announced") << QByteArray("\1\0\x20\0", 4) << megabyte;
        QTest::newRow("count past zero") << HubFrame::pack(first) + "x" << megabyte;
        QTest::newRow("count past zero, not ASCII") << HubFrame::pack(first) + "\xc3\xa4" << megabyte + "\xc3\xa4";
        QTest::newRow("frames without payload") << QByteArray() << QByteArray(1024 * 1024, '\0');
    }

    void aPeerThatStreamsIsNotKept()
    {
        QFETCH(QByteArray, begin);
        QFETCH(QByteArray, stream);
        constexpr int limit = 2 * 1024 * 1024;
        Wire wire;
        HubFrame::Receiver receiver(limit);
        QList<QByteArray> complete;
        const auto keep = [&](const QByteArray& payload) { complete << payload; };
        wire.feed(begin);
        receiver.receive(wire, keep);
        for (int i = 0; i < 5; ++i) {
            wire.feed(stream);
            receiver.receive(wire, keep);
            QVERIFY(receiver.keptBytes() + wire.bytesAvailable() <= limit);
        }
        receiver.reset();
        wire.feed(HubFrame::pack(stream.left(limit / 2)));
        receiver.receive(wire, keep);
        QCOMPARE(complete.size(), stream.at(0) == 'x' ? 1 : 0); // what may be kept still is
    }

    void repliesThatNobodyTakesAreBounded()
    {
        HubFrame::ReplyQueue queue(1000);
        for (const int size : {2000, 1, 1})
            queue.add(QByteArray(size, 'x'));
        QByteArray reply;
        QVERIFY(queue.take(reply));
        QCOMPARE(reply.size(), 2000); // a single one has room, whatever its size
        for (int i = 0; i < 1000; ++i)
            queue.add(QByteArray::number(i));
        int taken = 0;
        for (; queue.take(reply); ++taken)
            QCOMPARE(reply, QByteArray::number(taken));
        QVERIFY2(taken > 1 && taken < 20, qPrintable(QString::number(taken)));
    }

    void resetForgetsTheFrame()
    {
        Wire wire;
        HubFrame::Receiver receiver;
        QList<QByteArray> complete;
        const auto keep = [&](const QByteArray& payload) { complete << payload; };
        wire.feed(HubFrame::pack(first).left(9));
        receiver.receive(wire, keep);
        receiver.reset();
        wire.feed(HubFrame::pack(second));
        receiver.receive(wire, keep);
        QCOMPARE(complete, QList<QByteArray>{second});
    }
};

QTEST_GUILESS_MAIN(HubFrameTest)
#include "tst_hubframe.moc"
