#include "service/mapshop/map_shop_service.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "service/wire_items.h"

namespace nvsupport::service {
namespace {

constexpr std::uint32_t search = 101;
constexpr std::uint32_t searchKind = 4;  // the second word of every search
constexpr std::size_t pointBytes = 16;
constexpr Area everywhere = {-largestLatitude, -180, largestLatitude, 180};

// The box around the points of a request; none if the request is not as it should be.
std::optional<Area> RequestedArea(RequestReader& request) {
  if (request.Word() != search || request.Word() != searchKind) return std::nullopt;
  const std::uint32_t count = request.Word();
  if (count > request.Remaining() / pointBytes) return std::nullopt;
  Area box = {largestLatitude, largestLongitude, -largestLatitude, -largestLongitude};
  for (std::uint32_t i = 0; i < count; ++i) {
    const double latitude = request.Real();
    const double longitude = request.Real();
    // Asked this way round, what is no number fails too.
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

}  // namespace

std::string AnswerSearch(std::string_view request, const ProductIndex& products, std::size_t largest) {
  RequestReader reader(request);
  const auto area = RequestedArea(reader);
  if (!area) return ReplyWriter(Status::notUnderstood).Bytes();

  ReplyWriter reply(Status::done);
  reply.Word(0);  // words to skip
  const std::size_t countPosition = reply.Bytes().size();
  std::uint32_t count = 0;
  reply.Word(count);
  products.Find(*area, [&](const Product& product) {
    reply.Text(product.title);
    reply.Word(product.number);
    reply.Text(product.shortText);
    reply.Text(product.fileReference);
    reply.Word(product.kibibytes);
    ++count;
    return reply.Bytes().size() < largest;
  });
  reply.WordAt(countPosition, count);
  reply.Word(products.ProductCount());
  return reply.Bytes();
}

}  // namespace nvsupport::service
