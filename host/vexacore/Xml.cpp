#include "host/vexacore/Xml.h"

#include "host/vexacore/Debug.h"

namespace vexacore::xml {

namespace {
Owner<DocParserFactory> installed;
}

AbstractParseHandler::~AbstractParseHandler() = default;
AbstractDocParser::~AbstractDocParser() = default;
DocParserFactory::~DocParserFactory() = default;

void SetParserFactory(Owner<DocParserFactory>& holder) {
    DocParserFactory* const previous = installed.release();
    installed = holder;
    holder.reset(previous);
    debug::HostEvents::Append(installed.get() ? "parser factory installed"
                                              : "parser factory uninstalled");
}

DocParserFactory* GetParserFactory() noexcept { return installed.get(); }

}  // namespace vexacore::xml
