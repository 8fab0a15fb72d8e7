#include "host/web_page.h"

#include "host/web_text.h"
#include "platform/localized_strings.h"

namespace lumenquest::host {

std::string documentBeginning(const std::string& title, const WebLanguage& language) {
  return "<!DOCTYPE html>\n<html lang=\"" + htmlEscaped(language.tag) + "\" dir=\"" +
         (language.isRightToLeft ? "rtl" : "ltr") +
         "\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + htmlEscaped(title) +
         "</title>\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
}

std::string documentOf(const WebPage& page, const WebLanguage& language) {
  std::string html = documentBeginning(page.title, language) +
                     "<meta name=\"color-scheme\" content=\"light dark\">\n"
                     "<link rel=\"icon\" href=\"/icon.svg\" type=\"image/svg+xml\">\n"
                     "<link rel=\"stylesheet\" href=\"/style.css\">\n";
  if (!page.script.empty()) html += "<script src=\"/" + page.script + "\" defer></script>\n";
  if (page.refreshSeconds > 0) {
    html += "<noscript><meta http-equiv=\"refresh\" content=\"" +
            std::to_string(page.refreshSeconds) + "\"></noscript>\n";
  }
  return html + "</head>\n<body class=\"" + page.kind + "\">\n<main" + page.attributes + ">\n" +
         page.main + "</main>\n</body>\n</html>\n";
}

std::string webText(const std::string& key) {
  return htmlEscaped(platform::localizedString(key, platform::kTableApp));
}

std::string pageHeading(const std::string& title, const std::string& below) {
  return "<header class=\"heading\">\n<a class=\"back\" href=\"/\">" + webText("web_back") +
         "</a>\n<h1>" + htmlEscaped(title) + "</h1>\n" + below + "</header>\n";
}

}  // namespace lumenquest::host
