// Views as assistive technology sees them.
#pragma once

namespace qt {

/// From now on every view has a role, a name, states and actions of its own. Called once.
void installAccessibleViews();

}  // namespace qt
