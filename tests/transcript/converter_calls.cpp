#include <qxcore/converter.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

// The last two open as ISO-8859-1.
constexpr const wchar* kEncodings[] = {
    u"UTF-8",      u"UTF-16",      u"UTF-16LE",    u"UTF-16BE", u"UTF-32",      u"UTF-7",
    u"CP1252",     u"cp932",       u"SJIS",        u"EUC-JP",   u"ISO-2022-JP", u"GB18030",
    u"Big5",       u"ISO-8859-15", u"US-ASCII",    u"KOI8-R",   u"ibm-37",      u"windows-1251",
    u"ISO-8859-1", u"SCSU",        u"no encoding", u""};

int32_t Substitution(Random& random) {
    constexpr int32_t kSubstitutions[] = {-1,     -1,      0,        '?',     0xFFFD,
                                          0x3042, 0x10000, 0x10FFFE, 0x10FFFF};
    return random.Of(kSubstitutions);
}

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
class Stream : public Unshared {
  public:
    ~Stream() { QXEncToW_Close(m_converter); }

    void Open(Random& random, Line& line) {
        QXEncToW_Close(m_converter);
        m_encoding = random.Of(kEncodings);
        m_converter = QXEncToW_Open(m_encoding);
        line.Add("encoding", std::u16string_view(m_encoding)).Handle("->", m_converter);
    }

    void SetSubstitution(Random& random, Line& line) {
        const int32_t codePoint = Substitution(random);
        line.Add("codePoint", codePoint);
        line.Result(QXEncToW_SetSubstitutionChar(Converter(), codePoint));
    }

    void ToWide(Random& random, Line& line) {
        Convert<wchar>(random, line, Encoded(random, m_encoding), QXEncToW_Convert);
    }
    void FromWide(Random& random, Line& line) {
        Convert<char>(random, line, WideText(random), QXEncFromW_Convert);
    }

    template <typename To>
    void Flush(Random& random, Line& line, QXResult (*flush)(QXEncConverter*, To**, To*)) {
        Buffer<To> buffer(random.Below(8));
        To* target = buffer.Begin();
        line.Result(flush(Converter(), &target, buffer.Begin() + buffer.Size()));
        ShowTarget(target, &buffer, line);
    }
    void FlushToWide(Random& random, Line& line) { Flush(random, line, QXEncToW_Flush); }
    void FlushFromWide(Random& random, Line& line) { Flush(random, line, QXEncFromW_Flush); }

  private:
    QXEncConverter* Converter() {
        if (m_converter == nullptr) {
            m_converter = QXEncFromW_Open(m_encoding);
        }
        return m_converter;
    }

    template <typename To, typename From>
    void Convert(Random& random, Line& line, const std::basic_string<From>& text,
                 QXResult (*convert)(QXEncConverter*, const From**, const From*, To**, To*)) {
        const From* source = text.data();
        Buffer<To> buffer(random.Below(4 * text.size() + 2));
        To* target = buffer.Begin();
        const QXResult result = convert(Converter(), &source, text.data() + text.size(), &target,
                                        buffer.Begin() + buffer.Size());
        line.Add("source", text).Result(result).Place("source", source, text.data());
        ShowTarget(target, &buffer, line);
    }

    template <typename Unit>
    static void ShowTarget(const Unit* target, Buffer<Unit>* buffer, Line& line) {
        const auto written = static_cast<size_t>(target - buffer->Begin());
        line.Add("size", buffer->Size()).Add("target", buffer->Content().substr(0, written));
    }

    const wchar* m_encoding = u"UTF-8";
    QXEncConverter* m_converter = nullptr;
};

void ConvertAll(Random& random, Line& line) {
    const wchar* const from = random.Of(kEncodings);
    const wchar* const to = random.Of(kEncodings);
    const std::string source = Encoded(random, from);
    const int32_t substitution = Substitution(random);
    size_t read = source.size();
    size_t written = random.OneIn(2) ? 8 * source.size() + 8 : random.Below(source.size() + 4);
    Buffer<char> target(written);
    line.Add("from", std::u16string_view(from)).Add("to", std::u16string_view(to));
    line.Add("source", source).Add("size", written).Add("substitution", substitution);
    line.Result(
        QXEncConvert(source.data(), &read, from, target.Begin(), &written, to, substitution));
    line.Add("read", read).Add("written", written);
    line.Add("target", target.Content().substr(0, written));
}

// Without a name and before QXEncUtilInit there is no converter to be had.
void WithoutConverter(Random& random, Line& line) {
    QXEncConverter* const converter = QXEncToW_Open(nullptr);
    const std::string text = NarrowText(random);
    const char* source = text.data();
    wchar* target = nullptr;
    line.Result(QXEncToW_Convert(converter, &source, text.data() + text.size(), &target, target));
    line.Result(QXEncToW_Flush(converter, &target, target));
    line.Result(QXEncToW_SetSubstitutionChar(converter, Substitution(random)));
    QXEncFromW_Close(converter);
}

}  // namespace

std::vector<Call> ConverterCalls() {
    const auto stream = std::make_shared<Stream>();
    return {
        {"QXEncToW_Open", Member(stream, &Stream::Open)},
        {"QXEncToW_SetSubstitutionChar", Member(stream, &Stream::SetSubstitution)},
        {"QXEncToW_Convert", Member(stream, &Stream::ToWide)},
        {"QXEncFromW_Convert", Member(stream, &Stream::FromWide)},
        {"QXEncToW_Flush", Member(stream, &Stream::FlushToWide)},
        {"QXEncFromW_Flush", Member(stream, &Stream::FlushFromWide)},
        {"QXEncConvert", ConvertAll, 2},
        {"QXEncToW_Open without a name", WithoutConverter},
    };
}

void PrintConverters() {
    Line("QXEncUtilInit").Add("->", QXEncUtilInit(""));
}
