#pragma once
// A catalog like the application's, the same on every machine: keys with long common prefixes,
// texts of a few words, every eighth with a marker.
#include <algorithm>
#include <cstddef>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "wordlex/staticlib/Wordlexlib.h"

namespace benchmarks {

struct Corpus {
    explicit Corpus(std::size_t count) {
        static constexpr const char* kHeads[] = {"/Menu/Clip/", "/Effects/Video/Amount/",
                                                 "/Dialog/ExportSettings/", "/Panel/AudioMixer/"};
        static constexpr const char* kWords[] = {"Ripple",  "Trim",  "Marker", "Sequence",
                                                 "Opacity", "Track", "Export", "Render"};
        std::mt19937 random(1);
        for (std::size_t i = 0; i < count; ++i) {
            std::string key = std::string(kHeads[random() % 4]) + kWords[random() % 8] + "/" +
                              kWords[random() % 8] + std::to_string(i);
            std::u16string value = i % 8 == 0 ? u"^1: " : u"";
            for (auto words = 2 + random() % 6; words-- > 0;) {
                for (const char* c = kWords[random() % 8]; *c != '\0'; ++c) {
                    value += static_cast<char16_t>(*c == 'e' ? u'\u00E9' : *c);
                }
                value += u' ';
            }
            keys.push_back(std::move(key));
            values.push_back(std::move(value));
        }
    }

    // "$$$/key=default text", in random order.
    std::vector<std::string> Requests(const char* tail = "=The text in English") const {
        std::vector<std::string> requests;
        for (const std::string& key : keys)
            requests.push_back("$$$" + key + tail);
        std::shuffle(requests.begin(), requests.end(), std::mt19937(2));
        return requests;
    }

    std::string TextFile() const {
        std::u16string text = u"\uFEFF";
        for (std::size_t i = 0; i < keys.size(); ++i) {
            text += u"\"$$$" + std::u16string(keys[i].begin(), keys[i].end()) + u"=" + values[i] +
                    u"\"\n";
        }
        return {reinterpret_cast<const char*>(text.data()), 2 * text.size()};
    }

    // Without a mark, and so 8-bit text: UTF-8.
    std::string EightBitFile(const char* endOfLine) const {
        std::string text;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            text += "\"$$$" + keys[i] + "=";
            for (const char16_t unit : values[i]) {
                if (unit == u'\u00E9') {
                    text += "\xC3\xA9";
                } else {
                    text += static_cast<char>(unit);
                }
            }
            text += std::string("\"") + endOfLine;
        }
        return text;
    }

    void AddTo(lexon::Dictionary& dictionary) const {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            dictionary.Add(keys[i].c_str(),
                           reinterpret_cast<const unsigned short*>(values[i].data()),
                           values[i].size(), nullptr, nullptr, 0);
        }
    }

    std::string BinaryFile() const {
        lexon::Dictionary dictionary(true);
        AddTo(dictionary);
        std::ostringstream out;
        dictionary.Serialize(out, true, nullptr);
        return out.str();
    }

    std::vector<std::string> keys;
    std::vector<std::u16string> values;
};

}  // namespace benchmarks
