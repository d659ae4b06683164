#pragma once
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/base/TextScanner.h"
#include "tools/check/CheckedFile.h"

namespace tool {

// Looks at one line after the other of a text dictionary.
class LineCheck {
public:
    // All of them outlive the check.
    LineCheck(const TextScanner& lines, CheckedFile& checkedFile, Findings& findingsOfFile)
        : scanner(lines), file(checkedFile), findings(findingsOfFile) {}

    // The line that the scanner stands at.
    void Check();
    // Tells what the malformed keys of the file cost; to be called when all lines were checked.
    void Finish();

private:
    // Where the parts of a line are, as the loader takes it apart. Null or empty where there is
    // none.
    struct Parts {
        const unsigned short* opening = nullptr;
        const unsigned short* closing = nullptr;
        Units key;
        Units value;
        bool hasEquals = false;
        bool isMessage = false;
    };

    void Add(Rule rule, const unsigned short* position, std::string text);
    void Annotate(Parts& parts);
    void CheckMarks(const Parts& parts);
    void CheckKey(const Parts& parts);
    void CheckEquals(const Parts& parts);
    Text CheckValue(const Parts& parts);
    void Define(const Parts& parts, Text value);

    const TextScanner& scanner;
    CheckedFile& file;
    Findings& findings;
    std::vector<Place> malformedKeys;
    // How and where each key stood first.
    struct First {
        std::vector<unsigned short> key;
        Place place;
    };
    std::unordered_map<std::string, First> firsts;
};

}  // namespace tool
