// Keeps the support library non-empty; the helpers of the tests join it here.
