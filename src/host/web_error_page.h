#pragma once

#include <string>

#include "host/web_page.h"

namespace lumenquest::host {

// The pages of what never reaches the site: a request that is none, one too many, a failure.

/// "Bad Request", for the status line.
std::string phraseOf(int status);

/// The page of a status of 400 and above: it stands alone, and leads to `url`, the address of the
/// home screen.
std::string errorPage(int status, const std::string& url, const WebLanguage& language);

/// The style that such a page holds, as the Content-Security-Policy has to name it: "'sha256-...'".
std::string errorStyleSource();

}  // namespace lumenquest::host
