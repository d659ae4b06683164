#include "host/vexacore/Xml.h"

#include "host/vexacore/Debug.h"

namespace vexacore::xml {

namespace {
Owner<DocParserFactory> installedFactory;
}

AbstractParseHandler::~AbstractParseHandler() = default;
AbstractDocParser::~AbstractDocParser() = default;
DocParserFactory::~DocParserFactory() = default;

void SetParserFactory(Owner<DocParserFactory>& holder) {
    DocParserFactory* const previous = installedFactory.release();
    installedFactory = holder;
    holder.reset(previous);
    debug::HostEvents::Append(installedFactory.get() ? "parser factory installed"
                                                     : "parser factory uninstalled");
}

DocParserFactory* GetParserFactory() noexcept { return installedFactory.get(); }

}  // namespace vexacore::xml
