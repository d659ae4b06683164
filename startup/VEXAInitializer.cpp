#include "startup/VEXAInitializer.h"

#include <optional>

#include "host/FWR/Application.h"
#include "host/Foundation/Foundation.h"
#include "host/Ovis/Language.h"
#include "host/Ovis/PathUtils.h"
#include "host/vexacore/Config.h"
#include "host/vexacore/Debug.h"
#include "host/vexacore/FileSupport.h"
#include "host/vexacore/Locale.h"
#include "host/vexacore/Utility.h"
#include "host/vexacore/Xml.h"
#include "xml/LibXML2ParseHandler.h"

namespace Startup {

namespace config = vexacore::config;
namespace utility = vexacore::utility;
namespace xml = vexacore::xml;
using vexacore::UTF16String;
using vexacore::debug::HostEvents;
using vexacore::filesupport::Dir;

namespace {

const UTF16String kLocaleFolderName = u"locale";
const UTF16String kDictionariesFolderName = u"Dictionaries";

void SetIdentity() {
    using utility::AsciiToUTF16;
    config::SetClientName(AsciiToUTF16("Framewright Homeline"));
    config::SetCompanyName(AsciiToUTF16("Norvale"));
    config::SetClientVersion(AsciiToUTF16(FWR::GetApplicationVersion()));
    config::SetClientInternalVersion(AsciiToUTF16(FWR::GetApplicationVersion()));
    config::SetClientBuildNumber(AsciiToUTF16(FWR::GetApplicationBuild()));
    config::SetSuiteClientFamily(AsciiToUTF16("HOMELINE"));
    config::SetSAPCode(AsciiToUTF16("KTX"));
}

// The folder for dictionaries shared by all users of the computer.
UTF16String SharedSupportPath() {
    std::optional<NSError> error;
    const auto url = NSFileManager::DefaultManager().URLForDirectory(
        NSApplicationSupportDirectory, NSLocalDomainMask, nullptr, false, &error);
    if (error) HostEvents::Append("no Application Support folder: " + error->localizedDescription);
    const UTF16String support = error ? UTF16String() : utility::MACtoVEXA(url->Path());

    const UTF16String separator = Ovis::PathUtils::GetPathSeparator();
    UTF16String path = Ovis::PathUtils::AddTrailingSlash(support);
    for (const UTF16String& folder :
         {utility::AsciiToUTF16("Norvale"), utility::StdToUTF16String(FWR::GetApplicationName()),
          utility::StdToUTF16String(FWR::GetApplicationVersion()), kLocaleFolderName,
          Ovis::GetLanguageString(), kDictionariesFolderName})
        path += folder + separator;
    return path;
}

void InstallParserFactory() {
    vexacore::Owner<xml::DocParserFactory> factory(new xml::LibXML2ParserFactory);
    xml::SetParserFactory(factory);
}

void UninstallParserFactory() {
    vexacore::Owner<xml::DocParserFactory> none;
    xml::SetParserFactory(none);
}

}  // namespace

VEXAInitializer::VEXAInitializer() {
    SetIdentity();
    errorManager = std::make_unique<config::ErrorManager>();
    newHandlerInitializer = std::make_unique<config::ErrorManager::NewHandlerInitializer>();
    localizer = std::make_unique<FE::Localizer>();
    config::ErrorManager::Set(errorManager.get());
    bool localizerInstalled = false;
    try {
        const UTF16String applicationPath = Dir::AppDir().FullPath();
        InstallParserFactory();
        localizer->LoadWordlexDictionary(applicationPath);
        localizer->LoadWordlexDictionary(SharedSupportPath());
        config::Localizer::Set(localizer.get(), Dir());
        localizerInstalled = true;
        vexacore::Locale::Initialize(Ovis::GetLanguageString(), Dir());
    } catch (...) {
        config::ErrorManager::Set(nullptr);
        if (localizerInstalled) config::Localizer::Set(nullptr, Dir());
        throw;
    }
}

VEXAInitializer::~VEXAInitializer() {
    UninstallParserFactory();
    config::ErrorManager::Set(nullptr);
    config::Localizer::Set(nullptr, Dir());
}

}  // namespace Startup
