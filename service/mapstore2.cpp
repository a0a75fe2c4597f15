// mapstore2.cgi, the map shop service: operation 101.
//
// NV_SERVICE_PRODUCTS        the products on offer, a text file as product_file.h tells
// NV_SERVICE_PRODUCTS_INDEX  an index of them, made when it is needed; if not set the text file is read for each
// request
#include "service/cgi.h"
#include "service/mapshop/map_shop_service.h"

int main() {
  namespace service = nvsupport::service;
  return service::AnswerPost(service::largestSearch, service::Transport::any, [](std::string_view request) {
    const service::ProductIndex products(service::RequiredVariable("NV_SERVICE_PRODUCTS"),
                                         service::Variable("NV_SERVICE_PRODUCTS_INDEX"));
    return service::AnswerSearch(request, products);
  });
}
