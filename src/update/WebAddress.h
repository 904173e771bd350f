#pragma once

#include <QString>

class QNetworkRequest;
class QUrl;

/// What the feed and the file have in common: where they may come from, and how they are asked for.
namespace web {

/// Redirections that are followed; more of them count as a loop.
constexpr int REDIRECT_LIMIT = 10;
/// A transfer that stands still for so long has failed.
constexpr int TRANSFER_TIMEOUT_MS = 30000;

/// A complete http or https address. A feed may name anything, and nothing else is fetched or opened.
bool isWebAddress(const QUrl& url);
/// Never from https down to http.
bool mayRedirect(const QUrl& from, const QUrl& to);

/// Does not follow redirections by itself, and asks for the plain bytes, whose number
/// Content-Length then tells. Without an agent the toolkit's own is sent.
QNetworkRequest request(const QUrl& url, const QString& userAgent, int timeoutMs);

} // namespace web
