#include <qxcore/converter.h>

#include "text/converter.h"

namespace {

constexpr size_t kPivotUnits = 1024;

// From one encoding to the other through wide text, from a source to a target in memory.
class OneShot {
  public:
    OneShot(QXEncConverter& from, QXEncConverter& to, const char* source, size_t sourceSize,
            char* target, size_t targetSize) noexcept
        : m_from(from),
          m_to(to),
          m_source(source),
          m_sourceLimit(source + sourceSize),
          m_target(target),
          m_targetLimit(target + targetSize) {}

    QXResult Run() noexcept {
        const QXResult result =
            m_from.ConvertDirectly(m_to, &m_source, m_sourceLimit, &m_target, m_targetLimit,
                                   m_pivot, m_pivot + kPivotUnits)
                ? QX_S_OK
                : RunPasses();
        return QX_SUCCEEDED(result) ? Flush() : result;
    }

    const char* Source() const noexcept { return m_source; }
    char* Target() const noexcept { return m_target; }

  private:
    // How far the cursors are after a failure is told by these passes alone.
    QXResult RunPasses() noexcept {
        QXResult result;
        do {
            result = RunPass();
        } while (QX_SUCCEEDED(result) && m_source < m_sourceLimit);
        return result;
    }

    // What the source gave before it failed still goes to the target.
    QXResult RunPass() noexcept {
        wchar* end = m_pivot;
        const QXResult read =
            m_from.ToWide(&m_source, m_sourceLimit, &end, m_pivot + kPivotUnits, false);
        const QXResult written = WritePivot(end);
        // A full pivot is no failure: the next pass goes on behind it.
        return QX_FAILED(read) && read != QX_E_BUFFERTOOSMALL ? read : written;
    }

    QXResult WritePivot(const wchar* end) noexcept {
        const wchar* begin = m_pivot;
        return m_to.FromWide(&begin, end, &m_target, m_targetLimit, false);
    }

    QXResult Flush() noexcept {
        wchar* end = m_pivot;
        QXResult result = m_from.FlushToWide(&end, m_pivot + kPivotUnits);
        if (QX_SUCCEEDED(result)) {
            result = WritePivot(end);
        }
        return QX_SUCCEEDED(result) ? m_to.FlushFromWide(&m_target, m_targetLimit) : result;
    }

    QXEncConverter& m_from;
    QXEncConverter& m_to;
    const char* m_source;
    const char* const m_sourceLimit;
    char* m_target;
    char* const m_targetLimit;
    wchar m_pivot[kPivotUnits];
};

}  // namespace

int32_t QXEncUtilInit(const char* dataDirectory) {
    return InitConverters(dataDirectory);
}

QXEncConverter* QXEncToW_Open(const wchar* encodingName) {
    return new QXEncConverter(encodingName);
}

QXEncConverter* QXEncFromW_Open(const wchar* encodingName) {
    return QXEncToW_Open(encodingName);
}

void QXEncToW_Close(QXEncConverter* converter) {
    delete converter;
}

void QXEncFromW_Close(QXEncConverter* converter) {
    QXEncToW_Close(converter);
}

QXResult QXEncToW_SetSubstitutionChar(QXEncConverter* converter, int32_t codePoint) {
    return converter->SetSubstitution(codePoint);
}

QXResult QXEncFromW_SetSubstitutionChar(QXEncConverter* converter, int32_t codePoint) {
    return QXEncToW_SetSubstitutionChar(converter, codePoint);
}

QXResult QXEncToW_Convert(QXEncConverter* converter, const char** source, const char* sourceLimit,
                          wchar** target, wchar* targetLimit) {
    return converter->ToWide(source, sourceLimit, target, targetLimit, false);
}

QXResult QXEncFromW_Convert(QXEncConverter* converter, const wchar** source,
                            const wchar* sourceLimit, char** target, char* targetLimit) {
    return converter->FromWide(source, sourceLimit, target, targetLimit, false);
}

QXResult QXEncToW_Flush(QXEncConverter* converter, wchar** target, wchar* targetLimit) {
    return converter->FlushToWide(target, targetLimit);
}

QXResult QXEncFromW_Flush(QXEncConverter* converter, char** target, char* targetLimit) {
    return converter->FlushFromWide(target, targetLimit);
}

QXResult QXEncConvert(const void* source, size_t* sourceSize, const wchar* sourceEncoding,
                      void* target, size_t* targetSize, const wchar* targetEncoding,
                      int32_t substitution) {
    QXEncConverter from(sourceEncoding);
    QXResult result = from.SetSubstitution(substitution);
    if (QX_FAILED(result)) {
        return result;
    }
    QXEncConverter to(targetEncoding);
    result = to.SetSubstitution(substitution);
    if (QX_FAILED(result)) {
        return result;
    }
    const auto* const sourceBytes = static_cast<const char*>(source);
    auto* const targetBytes = static_cast<char*>(target);
    OneShot conversion(from, to, sourceBytes, *sourceSize, targetBytes, *targetSize);
    result = conversion.Run();
    *sourceSize = static_cast<size_t>(conversion.Source() - sourceBytes);
    *targetSize = static_cast<size_t>(conversion.Target() - targetBytes);
    return result;
}
