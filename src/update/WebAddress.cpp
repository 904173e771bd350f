#include "update/WebAddress.h"

#include <QNetworkRequest>
#include <QUrl>

namespace web {

bool isWebAddress(const QUrl& url)
{
    const QString scheme = url.scheme(); // lower case already
    return url.isValid() && !url.host().isEmpty()
           && (scheme == QStringLiteral("http") || scheme == QStringLiteral("https"));
}

QString objection(const QUrl& from, const QUrl& to)
{
    if (!isWebAddress(to))
        return QStringLiteral("The address that the server gave is not one of the web.");
    if (from.scheme() == QStringLiteral("https") && to.scheme() != from.scheme())
        return QStringLiteral(
            "The server was asked safely by https, but the address that it gave is only http.");
    return QString();
}

QNetworkRequest request(const QUrl& url, const QString& userAgent, int timeoutMs)
{
    QNetworkRequest request(url);
    if (!userAgent.isEmpty())
        request.setRawHeader("User-Agent", userAgent.toUtf8());
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setTransferTimeout(timeoutMs);
    return request;
}

} // namespace web
