#include <gateway/cabinetparameters.h>
#include <gateway/frame.h>
#include <gateway/message.h>

#include <QTest>

#include <cmath>
#include <cstring>
#include <limits>

using namespace Gateway;
using Numbers = std::vector<unsigned long long>;
using Shorts = std::vector<unsigned short>;
using Bytes = std::vector<unsigned char>;

namespace {

const Action::CabinetState nothing;

QByteArray payloadOf(const QByteArray& frame)
{
    return frame.mid(headerLength);
}

/// A call with these parameters, from one end to the other.
Call sent(const Parameters& parameters)
{
    Call call;
    call.id = 7;
    call.parameters = parameters;
    const auto frame = frameOf(call);
    const auto message = frame ? parseMessage(payloadOf(*frame)) : frame.fault();
    if (!message)
        qFatal("%s", qPrintable(message.fault().message()));
    return std::get<Call>(*message);
}

template <typename T>
void checkValue(const T& value)
{
    Parameters parameters;
    parameters.insert("key", value);
    const Call call = sent(parameters);
    const T* arrived = call.parameters.arguments().find<T>("key");
    QVERIFY(arrived);
    QVERIFY(*arrived == value);
}

QByteArray member(const char* name, const QByteArray& value)
{
    return char(0x60 + int(std::strlen(name))) + QByteArray(name) + value;
}

} // namespace

class MessageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTypeTravelsWithoutLoss()
    {
        for (const int value : {0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
            checkValue(value);
        checkValue(true);
        for (const char* text : {"", "plain", "\xe6\xb5\x8b", "no UTF-8: \xff\xc3"})
            checkValue(std::string(text));
        checkValue(std::string("\0a", 2));
        checkValue(Numbers{});
        checkValue(Numbers{0, (1ull << 53) + 1, std::numeric_limits<unsigned long long>::max()});
        checkValue(Shorts{});
        checkValue(Shorts{0, 1, 0x8000, 0xffff});
        checkValue(Bytes{});
        checkValue(Bytes(65536, 0xa5));
    }

    void doublesTravelBitForBit()
    {
        using Limits = std::numeric_limits<double>;
        for (const double value :
             {-0.0, 0.1, 1.0, Limits::denorm_min(), Limits::max(), Limits::infinity(), std::nan("0x123")}) {
            Parameters parameters;
            parameters.insert("key", value);
            const auto arrived = sent(parameters).parameters.get<double>("key");
            QVERIFY(std::memcmp(&arrived, &value, sizeof(value)) == 0);
        }
    }

    void nestedParametersKeepTheirMaps()
    {
        Parameters inner;
        inner.options().insert("timeout", 4);
        Parameters entry;
        entry.insert("cids", Numbers{1});
        entry.insert("list", std::vector<Parameters>{inner, {}});
        Parameters outer;
        outer.attributes().insert("free", true);
        outer.insert("switches", std::vector<Parameters>{entry});
        const Parameters arrived = sent(outer).parameters;
        QVERIFY(arrived.attributes().find<bool>("free"));
        const auto switches = arrived.get<std::vector<Parameters>>("switches");
        QCOMPARE(switches.size(), std::size_t{1});
        QVERIFY(switches[0].get<Numbers>("cids") == Numbers{1});
        const auto list = switches[0].get<std::vector<Parameters>>("list");
        QCOMPARE(list.size(), std::size_t{2});
        QCOMPARE(list[0].options().get<int>("timeout"), 4);
        QVERIFY(list[1].options().items().empty());
    }

    void whatDoesNotTravelIsNamed()
    {
        Parameters parameters;
        parameters.insert("odd", 1.0f);
        Call call;
        call.parameters = parameters;
        QVERIFY(frameOf(call).fault().message().contains("\"odd\" is of a type"));
        Parameters large;
        large.insert("bin", std::string(maxPayload, 'x'));
        call.parameters = large;
        QVERIFY(frameOf(call).fault().message().contains("more than the 67108864"));
        Parameters deep;
        for (int i = 0; i < 10; ++i) {
            Parameters around;
            around.insert("in", std::vector<Parameters>{deep});
            deep = around;
        }
        call.parameters = deep;
        QVERIFY(frameOf(call).fault().message().contains("nested"));
    }

    void cabinetsComeBackAndShareWhatIsEqual()
    {
        Action::CabinetState state;
        state.mode = 11;
        state.grayTable = std::make_shared<Action::GrayTable>(Action::GrayTable{{1, 2}, {3, 4}, {5, 6}, {7, 8}, 60});
        auto gamut = std::make_shared<Model::ColorGamutInfo>();
        gamut->name = "Rec.709";
        gamut->wLxy = {100.0, 0.3127, 0.329, {}};
        state.targetGamut = gamut;
        state.coefficients = {16384, 1, 2, 3, 16384, 5, 6, 7, 65535};
        state.fullScale = 1023;
        state.binary = std::make_shared<QByteArray>("\0\xff", 2);
        const auto arrived = toCabinet(sent(toParameters(state)).parameters, nothing);
        QVERIFY(arrived && arrived->mode == 11 && arrived->fullScale == 1023 && !arrived->measuredGamut);
        QVERIFY(*arrived->grayTable == *state.grayTable && *arrived->targetGamut == *state.targetGamut);
        QVERIFY(*arrived->binary == *state.binary && arrived->coefficients == state.coefficients);
        QVERIFY(toCabinet(toParameters(state), *arrived)->grayTable == arrived->grayTable);
        QVERIFY(!toCabinet({}, nothing));
    }

    void brokenMessagesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QString>("fault");
        const auto row = [](const char* name, const QByteArray& payload, const char* fault) {
            QTest::newRow(name) << payload << QString(fault);
        };
        const auto inArguments = [](const QByteArray& value) {
            return "\xa2" + member("id", "\x01") + member("reply", "\xa1" + member("k", value));
        };
        row("nothing", "", "byte 0");
        row("not a map", "\x01", "expected a map");
        row("cut off", "\xa2" + member("id", "\x01"), "cut off");
        row("more behind it", "\xa1" + member("error", "a1") + "\x01", "bytes after");
        row("no kind", "\xa1" + member("id", "\x01"), "neither");
        row("no method of ours", "\xa1" + member("method", "\x63get"), "unknown method \"get\"");
        row("negative id", "\xa1" + member("id", "\x20"), "an integer from 0");
        row("id beyond 64 bits", "\xa1" + member("id", "\x3b\xff\xff\xff\xff\xff\xff\xff\xff"), "an integer from 0");
        row("string that claims 2 GiB", inArguments("\x7a\x7f\xff\xff\xff"), "byte");
        row("integer that is no int", inArguments(QByteArray("\x1a\x80\x00\x00\x00", 5)), "an integer from");
        row("list cut in a number", inArguments("\xd8\x47\x43xyz"), "numbers of 8 bytes");
        row("16-bit list cut in a number", inArguments("\xd8\x45" + QByteArray("\x41x")), "numbers of 2 bytes");
        row("foreign tag", inArguments("\xd8\x20" + QByteArray("\x41x")), "unknown tag 32");
        row("a key twice", "\xa1" + member("reply", "\xa2" + member("k", "\x01") + member("k", "\x02")), "twice");
        row("nested without end", inArguments(QByteArray(100, '\x81')), "");
        row("unknown member nested without end", "\xa1" + member("new", QByteArray(100'000, '\x81')), "");
        row("a million entries",
            inArguments("\x9a" + QByteArray("\x00\x0f\x42\x40", 4) + QByteArray(1'000'000, '\x80')),
            "more than 200000 values");
    }

    void brokenMessagesAreRefused()
    {
        QFETCH(QByteArray, payload);
        QFETCH(QString, fault);
        const auto message = parseMessage(payload);
        QVERIFY(!message);
        QVERIFY2(message.fault().message().contains(fault), qPrintable(message.fault().message()));
    }

    void unknownMembersAndOtherFormsAreTaken()
    {
        const QByteArray open = "\xbf" + member("new", "\x82\x01\xa0") + member("id", "\x18\x2a") +
                                member("reply", "\xbf" + member("f", "\xf9\x3c" + QByteArray(1, '\0')) +
                                                    member("s", "\x7f\x61x\x61y\xff") + "\xff") +
                                "\xff";
        const auto message = parseMessage(open);
        QVERIFY2(message, qPrintable(message ? QString() : message.fault().message()));
        const auto& answer = std::get<Return>(*message);
        QCOMPARE(answer.id, quint64{42});
        QCOMPARE(std::get<Parameters>(answer.content).get<double>("f"), 1.0);
        QCOMPARE(std::get<Parameters>(answer.content).get<std::string>("s"), std::string("xy"));
    }

    void framesMayComeInAnyPieces()
    {
        const QByteArray first = frameOf(Hello{1, true, false});
        const QByteArray frames = first + frameOf(Hello{2, false, true});
        for (const int piece : {1, 3, first.size() - 1, first.size() + 2, frames.size()}) {
            FrameReader reader;
            QList<int> protocols;
            for (int start = 0; start < frames.size(); start += piece) {
                reader.append(frames.mid(start, piece));
                while (const auto payload = reader.next())
                    protocols << std::get<Hello>(*parseMessage(*payload)).protocol;
            }
            QCOMPARE(protocols, (QList<int>{1, 2}));
        }
        FrameReader reader;
        reader.append(QByteArray("\x01\x00\x00\x04", 4));
        QVERIFY(!reader.next() && reader.isTooLong());
    }
};

QTEST_GUILESS_MAIN(MessageTest)
#include "tst_message.moc"
