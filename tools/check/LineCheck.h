#pragma once
#include <string>
#include <vector>

#include "tools/base/TextScanner.h"
#include "tools/check/CheckedFile.h"

namespace tool {

// Checks a text dictionary line by line.
class LineCheck {
public:
    // All of them outlive the check.
    LineCheck(const TextScanner& lines, CheckedFile& checkedFile, Findings& findingsOfFile)
        : scanner(lines), file(checkedFile), findings(findingsOfFile) {}

    // Checks the scanner's current line.
    void Check();

private:
    // The parts of a line, as the loader splits it. Null or empty when there is none.
    struct Parts {
        const unsigned short* opening = nullptr;
        const unsigned short* closing = nullptr;
        Units key;
        Units value;
        bool hasEquals = false;
    };
    enum class Conflict { kNone, kFirstSide, kOtherSide };

    // A line with a finding about its key is spoilt.
    void Add(Rule rule, Units where, std::string text,
             std::optional<std::string> key = std::nullopt);
    bool IsOfConflict();
    void TakeAnnotations(Units comment, Definition& entry);
    // False where the value is not the text that the author wrote.
    bool CheckMarks(const Parts& parts);
    bool CheckOutside(const Parts& parts);
    void CheckKey(const Parts& parts);
    void CheckEquals(const Parts& parts);
    Text CheckValue(const Parts& parts);
    void Define(const Parts& parts, Definition entry);

    const TextScanner& scanner;
    CheckedFile& file;
    Findings& findings;
    bool isSpoilt = false;  // the current line
    Conflict conflict = Conflict::kNone;
};

}  // namespace tool
