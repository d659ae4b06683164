#include "tools/check/Check.h"

#include <algorithm>

#include "tools/base/Files.h"
#include "tools/base/Progress.h"
#include "tools/check/BinaryCheck.h"
#include "tools/check/TextCheck.h"
#include "wordlex/functionality/BinaryHeader.h"

namespace tool {

CheckedFile CheckFile(const std::string& name, const std::string& bytes, Findings& findings) {
    const bool binary = lexon_private::HasBinaryMagic(bytes.data(), bytes.size());
    CheckedFile file =
        binary ? CheckBinary(name, bytes, findings) : CheckText(name, bytes, findings);
    CheckAccelerators(file, findings);
    CheckMessages(file, findings);
    return file;
}

Reference ReadReference(const std::string& name, const std::string& bytes) {
    Reference reference;
    reference.file = CheckFile(name, bytes, reference.findings);
    reference.findings.ThrowIfFatal();
    return reference;
}

CheckResult CheckBytes(const std::string& name, const std::string& bytes,
                       const Reference* reference, const Findings::Rules& disabled) {
    Findings findings(disabled);
    CheckResult result;
    result.file = CheckFile(name, bytes, findings);
    if (result.file.usable && reference != nullptr) {
        const Progress progress("comparing", name);
        CheckAgainst(result.file, reference->file, reference->findings, findings);
    }
    result.findings = findings.Take();
    return result;
}

}  // namespace tool
