#include "app/frontend/Project.h"

#include "tests/TemporaryFolder.h"
#include "tests/hardening/Memory.h"
#include "xml/LibXML2ParseHandler.h"

namespace {

TEST(Project, IsWholeOrSaysThatMemoryRanOut) {
    using namespace vexacore::xml;
    vexacore::Owner<DocParserFactory> factory(new LibXML2ParserFactory);
    SetParserFactory(factory);
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("a.xml", "<a name='no short name at all'><b/>nor is it a short text</a>");
    const long failures = hardening::ForEveryFailingAllocation([&](auto inject) {
        frontend::ReadResult result;
        const auto outcome = inject([&] { result = frontend::ReadProject(path); });
        const bool done = outcome == hardening::Outcome::kDone;
        EXPECT_EQ(done, result.project.has_value());
        EXPECT_EQ(done ? "" : "out of memory", result.failure);
    });
    EXPECT_LT(10, failures);
    SetParserFactory(factory);
}

}  // namespace
