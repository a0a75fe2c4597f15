/* The smallest host: what does the map shop offer around Mont Blanc? */
#include <nvsupport/nvsupport.h>
#include <stdio.h>

int main(void) {
  const MapShopPoint area[] = {{45.8, 6.8}, {46.0, 7.0}};
  NVMapShopHandle products = NSMapShopSearch(area, 2);
  MapShopItem item;
  int count = 0;
  for (; NSMapShopGetNext(products, &item); ++count) printf("%s: %s\n", item.title, item.fileReference);
  NSMapShopClose(products);
  if (count == 0) puts("There are no products for this area, or the map shop is out of reach.");
  return 0;
}
