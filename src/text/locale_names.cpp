#include "text/locale_names.h"

#include <qxcore/string.h>
#include <qxcore/transform.h>

// clang-format off
const char* QXLocaleNameFromLCID(u32 number) noexcept {
#define ROW(value, name) case value: return name;
    switch (number) {
        ROW(0x0000, "root") ROW(0x0001, "ar") ROW(0x0002, "bg") ROW(0x0003, "ca") ROW(0x0004, "zh")
        ROW(0x0005, "cs") ROW(0x0006, "da") ROW(0x0007, "de") ROW(0x0008, "el") ROW(0x0009, "en")
        ROW(0x000A, "es") ROW(0x000B, "fi") ROW(0x000C, "fr") ROW(0x000D, "he") ROW(0x000E, "hu")
        ROW(0x000F, "is") ROW(0x0010, "it") ROW(0x0011, "ja") ROW(0x0012, "ko") ROW(0x0013, "nl")
        ROW(0x0014, "nb") ROW(0x0015, "pl") ROW(0x0016, "pt") ROW(0x0018, "ro") ROW(0x0019, "ru")
        ROW(0x001A, "hr") ROW(0x001B, "sk") ROW(0x001C, "sq") ROW(0x001D, "sv") ROW(0x001E, "th")
        ROW(0x001F, "tr") ROW(0x0020, "ur") ROW(0x0021, "id") ROW(0x0022, "uk") ROW(0x0023, "be")
        ROW(0x0024, "sl") ROW(0x0025, "et") ROW(0x0026, "lv") ROW(0x0027, "lt") ROW(0x0029, "fa")
        ROW(0x002A, "vi") ROW(0x002B, "hy") ROW(0x002C, "az") ROW(0x002D, "eu") ROW(0x002F, "mk")
        ROW(0x0036, "af") ROW(0x0037, "ka") ROW(0x0038, "fo") ROW(0x0039, "hi") ROW(0x003A, "mt")
        ROW(0x003E, "ms") ROW(0x003F, "kk") ROW(0x0040, "ky") ROW(0x0041, "sw") ROW(0x0043, "uz")
        ROW(0x0044, "tt") ROW(0x0045, "bn") ROW(0x0046, "pa") ROW(0x0047, "gu") ROW(0x0048, "or")
        ROW(0x0049, "ta") ROW(0x004A, "te") ROW(0x004B, "kn") ROW(0x004C, "ml") ROW(0x004D, "as")
        ROW(0x004E, "mr") ROW(0x004F, "sa") ROW(0x0050, "mn") ROW(0x0056, "gl") ROW(0x0057, "kok")
        ROW(0x0058, "mni") ROW(0x0059, "sd") ROW(0x005A, "syr") ROW(0x0060, "ks") ROW(0x0061, "ne")
        ROW(0x0065, "div") ROW(0x007F, "en_US_POSIX") ROW(0x0401, "ar_SA") ROW(0x0402, "bg_BG")
        ROW(0x0403, "ca_ES") ROW(0x0404, "zh_TW") ROW(0x0405, "cs_CZ") ROW(0x0406, "da_DK")
        ROW(0x0407, "de_DE") ROW(0x0408, "el_GR") ROW(0x0409, "en_US")
        ROW(0x040A, "es__TRADITIONAL") ROW(0x040B, "fi_FI") ROW(0x040C, "fr_FR")
        ROW(0x040D, "he_IL") ROW(0x040E, "hu_HU") ROW(0x040F, "is_IS") ROW(0x0410, "it_IT")
        ROW(0x0411, "ja_JP") ROW(0x0412, "ko_KR") ROW(0x0413, "nl_NL") ROW(0x0414, "nb_NO")
        ROW(0x0415, "pl_PL") ROW(0x0416, "pt_BR") ROW(0x0418, "ro_RO") ROW(0x0419, "ru_RU")
        ROW(0x041A, "hr_HR") ROW(0x041B, "sk_SK") ROW(0x041C, "sq_AL") ROW(0x041D, "sv_SE")
        ROW(0x041E, "th_TH") ROW(0x041F, "tr_TR") ROW(0x0420, "ur_PK") ROW(0x0421, "id_ID")
        ROW(0x0422, "uk_UA") ROW(0x0423, "be_BY") ROW(0x0424, "sl_SI") ROW(0x0425, "et_EE")
        ROW(0x0426, "lv_LV") ROW(0x0427, "lt_LT") ROW(0x0429, "fa_IR") ROW(0x042A, "vi_VN")
        ROW(0x042B, "hy_AM") ROW(0x042C, "az_AZ_L") ROW(0x042D, "eu_ES") ROW(0x042F, "mk_MK")
        ROW(0x0436, "af_ZA") ROW(0x0437, "ka_GE") ROW(0x0438, "fo_FO") ROW(0x0439, "hi_IN")
        ROW(0x043A, "mt_MT") ROW(0x043E, "ms_MY") ROW(0x043F, "kk_KZ") ROW(0x0440, "ky_KG")
        ROW(0x0441, "sw_KE") ROW(0x0443, "uz_UZ_L") ROW(0x0444, "tt_RU") ROW(0x0445, "bn_IN")
        ROW(0x0446, "pa_IN") ROW(0x0447, "gu_IN") ROW(0x0448, "or_IN") ROW(0x0449, "ta_IN")
        ROW(0x044A, "te_IN") ROW(0x044B, "kn_IN") ROW(0x044C, "ml_IN") ROW(0x044D, "as_IN")
        ROW(0x044E, "mr_IN") ROW(0x044F, "sa_IN") ROW(0x0450, "mn_MN") ROW(0x0456, "gl_ES")
        ROW(0x0457, "kok_IN") ROW(0x0458, "mni_IN") ROW(0x0459, "sd_IN") ROW(0x045A, "syr_SY")
        ROW(0x0460, "ks_IN") ROW(0x0461, "ne_NP") ROW(0x0465, "div_MV") ROW(0x0801, "ar_IQ")
        ROW(0x0804, "zh_CN") ROW(0x0807, "de_CH") ROW(0x0809, "en_GB") ROW(0x080A, "es_MX")
        ROW(0x080C, "fr_BE") ROW(0x0810, "it_CH") ROW(0x0812, "ko_KP") ROW(0x0813, "nl_BE")
        ROW(0x0814, "nn_NO") ROW(0x0816, "pt_PT") ROW(0x081A, "sh_YU") ROW(0x081D, "sv_FI")
        ROW(0x0820, "ur_IN") ROW(0x082C, "az_AZ") ROW(0x083E, "ms_BN") ROW(0x0843, "uz_UZ")
        ROW(0x0861, "ne_IN") ROW(0x0C01, "ar_EG") ROW(0x0C04, "zh_HK") ROW(0x0C07, "de_AT")
        ROW(0x0C09, "en_AU") ROW(0x0C0A, "es_ES") ROW(0x0C0C, "fr_CA") ROW(0x0C1A, "sr_YU")
        ROW(0x1001, "ar_LY") ROW(0x1004, "zh_SG") ROW(0x1007, "de_LU") ROW(0x1009, "en_CA")
        ROW(0x100A, "es_GT") ROW(0x100C, "fr_CH") ROW(0x1401, "ar_DZ") ROW(0x1404, "zh_MO")
        ROW(0x1407, "de_LI") ROW(0x1409, "en_NZ") ROW(0x140A, "es_CR") ROW(0x140C, "fr_LU")
        ROW(0x1801, "ar_MA") ROW(0x1809, "en_IE") ROW(0x180A, "es_PA") ROW(0x180C, "fr_MC")
        ROW(0x1C01, "ar_TN") ROW(0x1C09, "en_ZA") ROW(0x1C0A, "es_DO") ROW(0x2001, "ar_OM")
        ROW(0x2009, "en_JM") ROW(0x200A, "es_VE") ROW(0x2401, "ar_YE") ROW(0x2409, "en_VI")
        ROW(0x240A, "es_CO") ROW(0x2801, "ar_SY") ROW(0x2809, "en_BZ") ROW(0x280A, "es_PE")
        ROW(0x2C01, "ar_JO") ROW(0x2C09, "en_TT") ROW(0x2C0A, "es_AR") ROW(0x3001, "ar_LB")
        ROW(0x3009, "en_ZW") ROW(0x300A, "es_EC") ROW(0x3401, "ar_KW") ROW(0x3409, "en_PH")
        ROW(0x340A, "es_CL") ROW(0x3801, "ar_AE") ROW(0x380A, "es_UY") ROW(0x3C01, "ar_BH")
        ROW(0x3C0A, "es_PY") ROW(0x4001, "ar_QA") ROW(0x400A, "es_BO") ROW(0x440A, "es_SV")
        ROW(0x480A, "es_HN") ROW(0x4C0A, "es_NI") ROW(0x500A, "es_PR")
        ROW(0x10407, "de__PHONEBOOK")
        default: return "en_US";
    }
#undef ROW
}
// clang-format on

void WriteCodePageName(u32 codePage, wchar* buffer, i32 size) noexcept {
    constexpr u32 kUtf8 = 65001;
    if (codePage == kUtf8) {
        QXAnsiToUnicode(buffer, "UTF-8", static_cast<size_t>(size));
        return;
    }
    buffer[0] = u'C';
    buffer[1] = u'P';
    QXLToStrW(static_cast<u16>(codePage), buffer + 2, 10);
}
