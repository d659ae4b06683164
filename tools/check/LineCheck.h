#pragma once
#include <string>
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

private:
    // Where the parts of a line are, as the loader takes it apart. Null or empty where there is
    // none.
    struct Parts {
        const unsigned short* opening = nullptr;
        const unsigned short* closing = nullptr;
        Units key;
        Units value;
        bool hasEquals = false;
    };
    enum class Conflict { kNone, kFirstSide, kOtherSide };

    void Add(Rule rule, Units where, std::string text,
             std::optional<std::string> key = std::nullopt);
    bool IsOfConflict();
    void TakeAnnotations(Units comment, Definition& entry);
    void CheckMarks(const Parts& parts);
    void CheckOutside(const Parts& parts);
    void CheckKey(const Parts& parts);
    void CheckEquals(const Parts& parts);
    Text CheckValue(const Parts& parts);
    void Define(const Parts& parts, Definition entry);

    const TextScanner& scanner;
    CheckedFile& file;
    Findings& findings;
    Conflict conflict = Conflict::kNone;
};

}  // namespace tool
