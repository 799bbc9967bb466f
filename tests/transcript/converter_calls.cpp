#include <qxcore/converter.h>

#include "transcript/calls.h"

namespace {

// The last two open as ISO-8859-1.
constexpr const wchar* kEncodings[] = {
    u"UTF-8",      u"UTF-16",      u"UTF-16LE",    u"UTF-16BE", u"UTF-32",      u"UTF-7",
    u"CP1252",     u"cp932",       u"SJIS",        u"EUC-JP",   u"ISO-2022-JP", u"GB18030",
    u"Big5",       u"ISO-8859-15", u"US-ASCII",    u"KOI8-R",   u"ibm-37",      u"windows-1251",
    u"ISO-8859-1", u"SCSU",        u"no encoding", u""};

constexpr int32_t kSubstitutions[] = {-1, -1, 0, '?', 0xFFFD, 0x3042, 0x10000, 0x10FFFE, 0x10FFFF};
constexpr auto kSubstitution = AnyOf<kSubstitutions>;

// Text in an encoding, or something like it.
std::string Encoded(Random& random, const wchar* encoding) {
    const std::u16string text = WideText(random);
    if (random.OneIn(3)) {
        return NarrowText(random);
    }
    std::string encoded(8 * text.size() + 8, '\0');
    size_t read = 2 * text.size();
    size_t written = encoded.size();
    QXEncConvert(text.data(), &read, u"UTF-16LE", encoded.data(), &written, encoding, '?');
    return encoded.substr(0, written);
}

// An open converter, which keeps what a text left behind.
struct Stream {
    ~Stream() { QXEncToW_Close(converter); }

    OpenHandle Open(const wchar* name) {
        QXEncToW_Close(converter);
        encoding = name;
        converter = QXEncToW_Open(encoding);
        return {converter};
    }
    QXEncConverter* Converter() {
        if (converter == nullptr) {
            converter = QXEncFromW_Open(encoding);
        }
        return converter;
    }

    const wchar* encoding = u"UTF-8";
    QXEncConverter* converter = nullptr;
};

template <typename Unit>
void ShowTarget(const Unit* target, Buffer<Unit>* buffer, Line& line) {
    const auto written = static_cast<size_t>(target - buffer->Get());
    line.Add("size", buffer->Size()).Add("target", buffer->Content()).Add("written", written);
}

template <typename From, typename To>
void Convert(Random& random, Line& line, Stream* stream, const std::basic_string<From>& text,
             QXResult (*convert)(QXEncConverter*, const From**, const From*, To**, To*)) {
    const From* source = text.data();
    Buffer<To> buffer(random.Below(4 * text.size() + 2));
    To* target = buffer.Get();
    const QXResult result = convert(stream->Converter(), &source, text.data() + text.size(),
                                    &target, target + buffer.Size());
    line.Add("source", text).Result(result).Place("source", source, text.data());
    ShowTarget(target, &buffer, line);
}

template <typename To>
auto Flush(const std::shared_ptr<Stream>& stream, QXResult (*flush)(QXEncConverter*, To**, To*)) {
    return [=](Random& random, Line& line) {
        Buffer<To> buffer(random.Below(8));
        To* target = buffer.Get();
        line.Result(flush(stream->Converter(), &target, target + buffer.Size()));
        ShowTarget(target, &buffer, line);
    };
}

void ConvertAll(Random& random, Line& line) {
    const wchar* const from = random.Of(kEncodings);
    const wchar* const to = random.Of(kEncodings);
    const std::string source = Encoded(random, from);
    const int32_t substitution = kSubstitution(random);
    size_t read = source.size();
    size_t written = random.OneIn(2) ? 8 * source.size() + 8 : random.Below(source.size() + 4);
    Buffer<char> target(written);
    line.Add("from", from).Add("to", to).Add("source", source).Add("size", written);
    line.Add("substitution", substitution);
    line.Result(QXEncConvert(source.data(), &read, from, target.Get(), &written, to, substitution));
    line.Add("read", read).Add("written", written).Add("target", target.Content());
}

// Without a name and before QXEncUtilInit there is no converter to be had.
void WithoutConverter(Random& random, Line& line) {
    QXEncConverter* const converter = QXEncToW_Open(nullptr);
    const std::string text = NarrowText(random);
    const char* source = text.data();
    wchar* target = nullptr;
    line.Result(QXEncToW_Convert(converter, &source, text.data() + text.size(), &target, target));
    line.Result(QXEncToW_Flush(converter, &target, target));
    line.Result(QXEncToW_SetSubstitutionChar(converter, kSubstitution(random)));
    QXEncFromW_Close(converter);
}

}  // namespace

Calls ConverterCalls() {
    const auto stream = std::make_shared<Stream>();
    const auto converter = [=](Random&) { return OpenHandle{stream->Converter()}; };
    return {
        {"QXEncToW_Open",
         Row([=](const wchar* name) { return stream->Open(name); }, AnyOf<kEncodings>)},
        {NAMED(QXEncToW_SetSubstitutionChar, converter, kSubstitution)},
        {"QXEncToW_Convert",
         [=](Random& random, Line& line) {
             const std::string text = Encoded(random, stream->encoding);
             Convert(random, line, stream.get(), text, QXEncToW_Convert);
         }},
        {"QXEncFromW_Convert",
         [=](Random& random, Line& line) {
             Convert(random, line, stream.get(), WideText(random), QXEncFromW_Convert);
         }},
        {"QXEncToW_Flush", Flush(stream, QXEncToW_Flush)},
        {"QXEncFromW_Flush", Flush(stream, QXEncFromW_Flush)},
        {"QXEncConvert", ConvertAll, 2},
        {"QXEncToW_Open without a name", WithoutConverter},
    };
}

void PrintConverters() {
    Line("QXEncUtilInit").Add("->", QXEncUtilInit(""));
}
