// Whether translucent windows show what lies behind them.
#pragma once

namespace desktop {

/// False on an X display without a compositing manager (Extended Window Manager Hints,
/// _NET_WM_CM_Sn); there what is left transparent is black. True everywhere else.
bool isScreenComposited();

}  // namespace desktop
