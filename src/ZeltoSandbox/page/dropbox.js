export { showDrive as show } from "/drives.js";

export const title = "Dropbox";
export const styleSheet = "/drives.css";
