#include "service/mapshop/map_shop_service.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "service/wire_items.h"

namespace nvsupport::service {
namespace {

constexpr std::uint32_t search = 101;
constexpr std::uint32_t searchKind = 4;  // the second word of every search
constexpr std::size_t pointBytes = 16;
constexpr std::size_t pieceBytes = 32UL * 1024;  // of a reply, kept in memory
constexpr Area everywhere = {-largestLatitude, -180, largestLatitude, 180};

// The box around the points of a request; none if the request is malformed.
std::optional<Area> RequestedArea(RequestReader& request) {
  if (request.Word() != search || request.Word() != searchKind) return std::nullopt;
  const std::uint32_t count = request.Word();
  if (count > request.Remaining() / pointBytes) return std::nullopt;
  Area box = {largestLatitude, largestLongitude, -largestLatitude, -largestLongitude};
  for (std::uint32_t i = 0; i < count; ++i) {
    const double latitude = request.Real();
    const double longitude = request.Real();
    // Written so that a NaN fails, too.
    const bool valid = std::abs(latitude) <= largestLatitude && std::abs(longitude) <= largestLongitude;
    if (!valid) return std::nullopt;
    box.south = std::min(box.south, latitude);
    box.north = std::max(box.north, latitude);
    box.west = std::min(box.west, longitude);
    box.east = std::max(box.east, longitude);
  }
  request.Word();  // always 0
  if (!request.Complete()) return std::nullopt;
  return count == 0 ? everywhere : box;
}

// Writes one product.
void Write(ReplyWriter& reply, const Product& product) {
  reply.Text(product.title);
  reply.Word(product.number);
  reply.Text(product.shortText);
  reply.Text(product.fileReference);
  reply.Word(product.kibibytes);
}

// The size of what Write makes of a product whose texts have so many bytes in all.
constexpr std::size_t WrittenBytes(std::size_t textBytes) {
  return 5 * sizeof(std::uint32_t) + 2 * textBytes;
}

}  // namespace

Reply AnswerSearch(std::string_view request, const ProductIndex& products, std::int64_t most, std::size_t largest) {
  RequestReader reader(request);
  const auto area = RequestedArea(reader);
  if (!area) return StatusReply(Status::notUnderstood);

  // Counted first, because the number stands in front of the products.
  std::vector<std::int64_t> found;
  std::size_t bytes = 0;
  products.Find(*area, [&](std::int64_t id, std::size_t textBytes) {
    const std::size_t more = WrittenBytes(textBytes);
    if (bytes + more > largest || static_cast<std::int64_t>(found.size()) >= most) return false;
    bytes += more;
    found.push_back(id);
    return true;
  });
  ReplyWriter head(Status::done);
  head.Word(0);  // words to skip
  head.Word(static_cast<std::uint32_t>(found.size()));
  Reply reply = StatusReply(Status::done, head.Bytes());
  reply.reason = std::to_string(found.size()) + " products";
  reply.restBytes = bytes + sizeof(std::uint32_t);
  reply.rest = [&products, found = std::move(found)](const Reply::Sink& send) {
    ReplyWriter piece;
    for (const std::int64_t id : found) {
      Write(piece, products.Get(id));
      if (piece.Bytes().size() < pieceBytes) continue;
      if (!send(piece.Bytes())) return;
      piece.Clear();
    }
    piece.Word(products.ProductCount());
    send(piece.Bytes());
  };
  return reply;
}

}  // namespace nvsupport::service
