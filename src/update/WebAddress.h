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
/// Why an address that came from another one, as a redirection or in a feed, is neither fetched nor opened,
/// as a sentence for the player; empty when nothing speaks against it. From https nothing leads down to http.
QString objection(const QUrl& from, const QUrl& to);

/// Does not follow redirections by itself, and asks for the plain bytes, whose number
/// Content-Length then tells. Without an agent the toolkit's own is sent.
QNetworkRequest request(const QUrl& url, const QString& userAgent, int timeoutMs);

} // namespace web
