#include "gateway/ServicesFile.h"

#include "gateway/Markup.h"
#include "gateway/ServiceDialect.h"
#include "platform/FileStore.h"

namespace quarry {

QString writeServicesFile(const QString& file, const QByteArray& host, int port)
{
    QByteArray list = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                      "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n<dict>\n";
    for (const Service service : {Service::Google, Service::Yahoo, Service::Bing, Service::Exalead, Service::Ixquick}) {
        list += QByteArray("\t<key>") + nameOf(service) +
                "</key>\n\t<dict>\n\t\t<key>scheme</key>\n\t\t<string>http</string>\n" +
                "\t\t<key>host</key>\n\t\t<string>" + escapedMarkup(host) +
                "</string>\n\t\t<key>port</key>\n\t\t<integer>" + QByteArray::number(port) + "</integer>\n\t</dict>\n";
    }
    list += "</dict>\n</plist>\n";
    constexpr unsigned mode = 0644;
    DiskFileStore store;
    const FileStore::WriteResult result = store.replace(file, QStringLiteral(".services"), mode, list);
    return result.ok() ? QString() : QStringLiteral("cannot write \"%1\": %2").arg(file, result.error);
}

} // namespace quarry
