// mapstore2.cgi, the map shop service: operation 101.
//
// NV_SERVICE_PRODUCTS  the products on offer, a text file as product_catalogue.h tells
#include "service/cgi.h"
#include "service/mapshop/map_shop_service.h"

int main() {
  namespace service = nvsupport::service;
  return service::AnswerPost(service::largestSearch, service::Transport::any, [](std::string_view request) {
    return service::AnswerSearch(request, service::ReadProducts(service::RequiredVariable("NV_SERVICE_PRODUCTS")));
  });
}
