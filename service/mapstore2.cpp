// mapstore2.cgi, the map shop service: operation 101.
//
// NV_SERVICE_PRODUCTS            the products on offer: a text file, see product_file.h
// NV_SERVICE_PRODUCTS_INDEX      their index, made when it is needed; if not set each process makes its own
// NV_SERVICE_PRODUCTS_PER_REPLY  the most products that a reply holds (10000)
#include "service/cgi.h"
#include "service/mapshop/map_shop_service.h"
#include "service/settings.h"

int main() {
  namespace service = nvsupport::service;
  std::optional<service::ProductIndex> products;
  return service::Serve("mapstore2", [&](service::Request& request) {
    return service::AnswerPost(request, service::largestSearch, service::Transport::any, [&](std::string_view body) {
      if (!products) {
        products.emplace(service::RequiredSetting("NV_SERVICE_PRODUCTS"),
                         service::Setting("NV_SERVICE_PRODUCTS_INDEX"));
      }
      products->Update();
      constexpr std::int64_t usual = 10'000;
      return service::AnswerSearch(body, *products, service::NumberSetting("NV_SERVICE_PRODUCTS_PER_REPLY", usual));
    });
  });
}
