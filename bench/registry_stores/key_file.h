// GLib's key file: text that is parsed whole when it is opened; nothing is written back.
#ifndef QX_BENCH_REGISTRY_STORES_KEY_FILE_H
#define QX_BENCH_REGISTRY_STORES_KEY_FILE_H

#include <glib.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

#include "values.h"

class KeyFile {
  public:
    static constexpr char kName[] = "GLib key file in memory";
    static constexpr Offers kOffers = Offers::kWriting;
    struct Place {
        std::string path;
        std::string name;
    };

    static void Fill(const std::string& directory, int values) {
        std::ofstream file(directory + "/key_file");
        for (int number = 0; number < values; ++number) {
            const Place place = PlaceOf(number);
            if (number % kGroupSize == 0) {
                file << '[' << place.path << "]\n";
            }
            file << place.name << "=" << Text(kData) << '\n';
        }
    }

    explicit KeyFile(const std::string& directory) : m_file(::g_key_file_new()) {
        ::g_key_file_load_from_file(m_file, (directory + "/key_file").c_str(), G_KEY_FILE_NONE,
                                    nullptr);
    }
    ~KeyFile() { ::g_key_file_free(m_file); }
    KeyFile(const KeyFile&) = delete;
    KeyFile& operator=(const KeyFile&) = delete;

    static Place PlaceOf(int number) { return {KeyOf(GroupOf(number)), Narrow(NameOf(number))}; }
    static std::string KeyOf(int group) { return Narrow(PathOf(group)); }

    bool Get(const Place& place, Data* data) {
        char* const text =
            ::g_key_file_get_value(m_file, place.path.c_str(), place.name.c_str(), nullptr);
        if (text == nullptr) {
            return false;
        }
        std::memcpy(data, text, std::min(std::strlen(text), sizeof *data));
        ::g_free(text);
        return true;
    }

    bool Set(const Place& place, const Data& data) {
        ::g_key_file_set_value(m_file, place.path.c_str(), place.name.c_str(), Text(data).c_str());
        return true;
    }

    int Enumerate(const std::string& key) {
        char** const names = ::g_key_file_get_keys(m_file, key.c_str(), nullptr, nullptr);
        int count = 0;
        for (char** name = names; *name != nullptr; ++name, ++count) {
            ::g_free(::g_key_file_get_value(m_file, key.c_str(), *name, nullptr));
        }
        ::g_strfreev(names);
        return count;
    }

    bool OpenAndClose(const std::string& key) {
        return ::g_key_file_has_group(m_file, key.c_str()) != 0;
    }

  private:
    static std::string Narrow(std::u16string_view text) { return {text.begin(), text.end()}; }
    // As many bytes as the data has.
    static std::string Text(const Data& data) {
        std::string text(sizeof data, '.');
        std::transform(data.begin(), data.end(), text.begin(),
                       [](char16_t unit) { return static_cast<char>(unit != 0 ? unit : u'.'); });
        return text;
    }

    GKeyFile* m_file;
};

#endif
