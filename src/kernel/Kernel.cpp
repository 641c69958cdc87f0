// The kernels are headers; this file gives their object library a body.
