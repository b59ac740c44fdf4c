#include "proj/views/controls/PageManager.h"

PageManager::PageManager(int pageNumber, Controller& controller, FrontPanelSignals& signals)
    : pageNumber_(pageNumber),
      controller_(controller),
      currentPage_(pageFactory_.makePage(pageNumber_, controller_, signals)) {}
