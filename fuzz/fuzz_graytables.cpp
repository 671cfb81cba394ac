// The gray tables' text: the quick reading gives what converting line by line gives.

#include "fuzzing.h"
#include <qualityutility/resource/graytabletext_p.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QList<unsigned short> list;
    appendGrayNumbers(text, list);
    QList<unsigned int> wide;
    appendGrayNumbers(text, wide);
    if (list.size() != wide.size())
        qFatal("%d and %d numbers", list.size(), wide.size());
    int line = 0;
    for (int start = 0; start < text.size(); ++line) {
        int end = text.indexOf('\n', start);
        end = end < 0 ? text.size() : end;
        const unsigned short expected = text.mid(start, end - start).toUShort();
        if (line >= list.size() || list.at(line) != expected)
            qFatal("line %d: expected %u", line, static_cast<unsigned>(expected));
        start = end + 1;
    }
    return 0;
}
