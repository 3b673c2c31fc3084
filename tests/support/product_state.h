// The product's static state, as a whole.
#pragma once

// Clears every variable of the product, and ends what the last test has left behind of the
// system's: the window with its class, and the private heaps.
void resetProduct();
