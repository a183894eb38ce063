#include "demo/demo_catalogue.h"

#include "demo/demo_cover.h"

namespace demo {

std::vector<Programme> programmes() {
  return {
      {"Harbour Lights", "The Tin Sailors", "Postcards from the Breakwater", cover("waves")},
      {"夜明けの交差点", "水色レイディオ", "夏の終わりの地図", cover("petals")},
      {"Seventh Floor, No Lift", "Oda Brenner", "Last Stops", cover("stripes")},
      {"Το φως στο λιμάνι", "Νεφέλη Αύρα", "Μικρά ταξίδια", cover("sunrise")},
      {"Static Garden", "Low Orbit Parade", "Signals for Small Rooms", cover("rings")},
  };
}

std::vector<StoreAlbum> storeAlbums() {
  return {
      {"Oda Brenner", "Last Stops (Night Service Edition)", cover("rings")},
      {"Oda Brenner", "Last Stops", cover("stripes")},
      {"Marlow & Finch", "The Evening Ferry", cover("sunrise")},
      {"Low Orbit Parade", "Signals for Small Rooms", cover("rings")},
  };
}

}  // namespace demo
