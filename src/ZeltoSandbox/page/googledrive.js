export { showDrive as show } from "/drives.js";

export const title = "Google Drive";
export const styleSheet = "/drives.css";
